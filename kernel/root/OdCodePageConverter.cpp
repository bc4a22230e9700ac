#include "OdCodePageConverter.h"

#include <climits>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "OdError.h"
#include "OdUnicodeText.h"

namespace {

struct CachedConverter {
  std::string name;
  UConverter* converter;
};

// Converters of the code pages this thread used last, most recent first. A drawing has
// one code page, so a handful covers every real use.
class ThreadConverters {
 public:
  ~ThreadConverters() {
    for (auto& c : cached_) ucnv_close(c.converter);
  }
  UConverter* take(const std::string& name) {
    for (auto it = cached_.begin(); it != cached_.end(); ++it) {
      if (it->name == name) {
        UConverter* converter = it->converter;
        cached_.erase(it);
        return converter;
      }
    }
    return nullptr;
  }
  void giveBack(std::string name, UConverter* converter) {
    ucnv_reset(converter);
    cached_.insert(cached_.begin(), CachedConverter{std::move(name), converter});
    if (cached_.size() > kCapacity) {
      ucnv_close(cached_.back().converter);
      cached_.pop_back();
    }
  }

 private:
  static constexpr std::size_t kCapacity = 6;
  std::vector<CachedConverter> cached_;
};

ThreadConverters& threadConverters() {
  thread_local ThreadConverters converters;
  return converters;
}

// Remembers that the encoder had to substitute, then substitutes as ICU would.
struct LossRecord {
  bool lost = false;
};

void U_CALLCONV recordLoss(const void* context, UConverterFromUnicodeArgs* args,
                           const UChar* codeUnits, int32_t length, UChar32 codePoint,
                           UConverterCallbackReason reason, UErrorCode* error) {
  if (reason == UCNV_UNASSIGNED || reason == UCNV_ILLEGAL || reason == UCNV_IRREGULAR)
    static_cast<LossRecord*>(const_cast<void*>(context))->lost = true;
  UCNV_FROM_U_CALLBACK_SUBSTITUTE(nullptr, args, codeUnits, length, codePoint, reason, error);
}

}  // namespace

OdCodePageConverter::OdCodePageConverter(const char* codePage)
    : name_(codePage ? codePage : ""), converter_(nullptr) {
  if (name_.empty()) throw OdError(eUnknownCodePage, "no code page given for a text conversion");
  converter_ = threadConverters().take(name_);
  if (converter_) return;
  UErrorCode status = U_ZERO_ERROR;
  converter_ = ucnv_open(name_.c_str(), &status);
  if (U_FAILURE(status) || !converter_)
    throw OdError(eUnknownCodePage,
                  "unknown code page \"" + name_ + "\": no converter of that name");
}

OdCodePageConverter::~OdCodePageConverter() {
  threadConverters().giveBack(std::move(name_), converter_);
}

std::wstring OdCodePageConverter::decode(std::string_view bytes) {
  if (bytes.size() > INT32_MAX / 2)
    throw OdError(eInvalidInput, "text of " + std::to_string(bytes.size()) +
                                     " bytes is too long to convert from code page \"" + name_ +
                                     "\"");
  const auto length = static_cast<int32_t>(bytes.size());
  // One byte gives at most one UTF-16 unit in every single-byte code page and fewer in
  // the others; ICU says so when a guess is short, and the second try is exact.
  UChar small[256];
  std::vector<UChar> large;
  UChar* buffer = small;
  int32_t capacity = static_cast<int32_t>(std::size(small));
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (length + 1 > capacity || attempt > 0) {
      if (attempt == 0) capacity = length + 1;
      large.resize(static_cast<std::size_t>(capacity));
      buffer = large.data();
    }
    UErrorCode status = U_ZERO_ERROR;
    int32_t produced = ucnv_toUChars(converter_, buffer, capacity, bytes.data(), length, &status);
    if (U_SUCCESS(status)) return odunicode::fromUtf16(buffer, produced);
    if (status != U_BUFFER_OVERFLOW_ERROR) break;
    capacity = produced + 1;
  }
  throw OdError(eInvalidInput, "cannot decode text from code page \"" + name_ + "\"");
}

std::string OdCodePageConverter::encode(const UChar* text, int32_t length, bool* lossless) {
  const int8_t maxCharSize = ucnv_getMaxCharSize(converter_);
  if (length > (INT32_MAX - 16) / (maxCharSize + 1))
    throw OdError(eInvalidInput, "text of " + std::to_string(length) +
                                     " characters is too long to convert to code page \"" + name_ +
                                     "\"");
  const int32_t capacity = UCNV_GET_MAX_BYTES_FOR_STRING(length, maxCharSize);
  std::string out(static_cast<std::size_t>(capacity), '\0');

  // The loss record lives on this stack frame only, so the callback that points at it is
  // taken off again before returning: the converter goes back to the cache.
  LossRecord loss;
  UConverterFromUCallback previous = nullptr;
  const void* previousContext = nullptr;
  UErrorCode status = U_ZERO_ERROR;
  ucnv_setFromUCallBack(converter_, recordLoss, &loss, &previous, &previousContext, &status);
  int32_t produced = ucnv_fromUChars(converter_, out.data(), capacity, text, length, &status);
  UErrorCode restoreStatus = U_ZERO_ERROR;
  ucnv_setFromUCallBack(converter_, previous, previousContext, nullptr, nullptr, &restoreStatus);
  if (U_FAILURE(status))
    throw OdError(eInvalidInput, std::string("cannot encode text in code page \"") + name_ +
                                     "\": " + u_errorName(status));
  out.resize(static_cast<std::size_t>(produced));
  if (lossless) *lossless = !loss.lost;
  return out;
}
