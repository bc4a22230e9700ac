#include "HostMessage.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>

namespace {
std::vector<int> buttonAnswers(HostButtons buttons) {
  switch (buttons) {
    case HostButtons::kOk:
      return {kHostOk};
    case HostButtons::kOkCancel:
      return {kHostOk, kHostCancel};
    case HostButtons::kYesNo:
      return {kHostYes, kHostNo};
    case HostButtons::kYesNoCancel:
      return {kHostYes, kHostNo, kHostCancel};
    case HostButtons::kRetryCancel:
      return {kHostRetry, kHostCancel};
  }
  return {kHostOk};
}
}  // namespace

std::vector<int> HostMessageBox::answers() const {
  std::vector<int> ids = buttonAnswers(buttons);
  auto named = std::find(ids.begin(), ids.end(), defaultAnswer);
  if (named != ids.end()) std::rotate(ids.begin(), named, named + 1);
  return ids;
}

std::vector<int> HostTaskDialog::answers() const {
  std::vector<int> ids;
  for (const auto& b : buttons)
    if (b.id == defaultButton) ids.push_back(b.id);
  for (const auto& b : buttons)
    if (b.id != defaultButton) ids.push_back(b.id);
  ids.push_back(kHostCancel);
  return ids;
}

namespace {
struct Named {
  const wchar_t* name;
  int answer;
};
constexpr Named kNames[] = {{L"ok", kHostOk},
                            {L"cancel", kHostCancel},
                            {L"retry", kHostRetry},
                            {L"yes", kHostYes},
                            {L"no", kHostNo}};
}  // namespace

OdString hostAnswerName(int answer) {
  for (const Named& n : kNames)
    if (n.answer == answer) return n.name;
  return OdString::format(L"%d", answer);
}

bool hostParseAnswer(const OdString& text, int& answer) {
  OdString lower = text;
  lower.trimLeft().trimRight().makeLower();
  for (const Named& n : kNames) {
    if (lower == n.name) {
      answer = n.answer;
      return true;
    }
  }
  if (lower.isEmpty()) return false;
  wchar_t* end = nullptr;
  long value = std::wcstol(lower.c_str(), &end, 10);
  if (*end != L'\0' || value < -2147483647L || value > 2147483647L) return false;
  answer = static_cast<int>(value);
  return true;
}
