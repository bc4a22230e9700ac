#include "OdCollatorCache.h"

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <mutex>

#include "OdUtf16Text.h"

namespace {

std::mutex settingMutex;
std::string explicitLocale;                  // guarded by settingMutex
std::atomic<unsigned> settingGeneration{1};  // bumped by every setLocale

// "de_DE.UTF-8@euro" -> "de_DE"; "C", "POSIX" and "" -> "" (the root locale). A modifier
// with '=' is an ICU keyword ("de@collation=phonebook") and stays.
std::string icuLocaleId(std::string name) {
  std::size_t at = name.find('@');
  std::string modifier;
  if (at != std::string::npos) {
    if (name.find('=', at) != std::string::npos) modifier = name.substr(at);
    name.erase(at);
  }
  std::size_t dot = name.find('.');
  if (dot != std::string::npos) name.erase(dot);
  if (name == "C" || name == "POSIX") return "";
  return name + modifier;
}

std::string environmentLocale() {
  for (const char* variable : {"LC_ALL", "LC_COLLATE", "LANG"}) {
    const char* value = std::getenv(variable);
    if (value && *value) return value;
  }
  return "";
}

icu::Locale currentLocale() {
  std::string name;
  {
    std::lock_guard<std::mutex> lock(settingMutex);
    name = explicitLocale;
  }
  if (name.empty()) name = environmentLocale();
  std::string id = icuLocaleId(name);
  if (id.empty()) return icu::Locale::getRoot();
  icu::Locale locale(id.c_str());
  return locale.isBogus() ? icu::Locale::getRoot() : locale;
}

struct ThreadCollators {
  unsigned generation = 0;
  std::unique_ptr<icu::Collator> exact;       // tertiary strength
  std::unique_ptr<icu::Collator> ignoreCase;  // secondary strength

  void refresh() {
    unsigned now = settingGeneration.load(std::memory_order_acquire);
    if (now == generation) return;
    generation = now;
    UErrorCode status = U_ZERO_ERROR;
    exact.reset(icu::Collator::createInstance(currentLocale(), status));
    if (U_FAILURE(status)) {
      status = U_ZERO_ERROR;
      exact.reset(icu::Collator::createInstance(icu::Locale::getRoot(), status));
    }
    if (U_FAILURE(status)) exact.reset();
    ignoreCase.reset(exact ? exact->clone() : nullptr);
    if (ignoreCase) ignoreCase->setStrength(icu::Collator::SECONDARY);
  }
};

ThreadCollators& threadCollators() {
  thread_local ThreadCollators collators;
  collators.refresh();
  return collators;
}

int codePointOrder(std::wstring_view a, std::wstring_view b, bool ignoreCase) {
  if (ignoreCase) {
    OdUtf16Text x(a), y(b);
    UErrorCode status = U_ZERO_ERROR;
    return u_strCaseCompare(x.data(), x.length(), y.data(), y.length(),
                            U_FOLD_CASE_DEFAULT | U_COMPARE_CODE_POINT_ORDER, &status);
  }
  return a.compare(b);
}

}  // namespace

int OdCollatorCache::compare(std::wstring_view a, std::wstring_view b, bool ignoreCase) {
  ThreadCollators& collators = threadCollators();
  icu::Collator* collator = ignoreCase ? collators.ignoreCase.get() : collators.exact.get();
  int result;
  if (!collator) {
    result = codePointOrder(a, b, ignoreCase);
  } else {
    UErrorCode status = U_ZERO_ERROR;
    OdUtf16Text x(a), y(b);
    result = collator->compare(x.data(), x.length(), y.data(), y.length(), status);
    if (U_FAILURE(status)) result = codePointOrder(a, b, ignoreCase);
  }
  return result < 0 ? -1 : (result > 0 ? 1 : 0);
}

void OdCollatorCache::setLocale(const std::string& name) {
  {
    std::lock_guard<std::mutex> lock(settingMutex);
    explicitLocale = name;
  }
  settingGeneration.fetch_add(1, std::memory_order_acq_rel);
}

std::string OdCollatorCache::localeName() {
  icu::Locale locale = currentLocale();
  const char* name = locale.getName();
  return (name && *name) ? name : "root";
}
