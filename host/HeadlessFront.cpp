#include "HeadlessFront.h"

#include <algorithm>

namespace {
// Box texts come with Windows line ends at times; print them as plain lines.
std::string plain(const OdString& text) {
  std::string out = text.toUtf8();
  std::erase(out, '\r');
  return out;
}

std::string indent(const std::string& text) {
  std::string out = "  ";
  for (char c : text) {
    out += c;
    if (c == '\n') out += "  ";
  }
  return out;
}

const char* iconName(HostIcon icon) {
  switch (icon) {
    case HostIcon::kInformation:
      return " (information)";
    case HostIcon::kWarning:
      return " (warning)";
    case HostIcon::kError:
      return " (error)";
    case HostIcon::kQuestion:
      return " (question)";
    case HostIcon::kNone:
      break;
  }
  return "";
}
}  // namespace

void HeadlessFront::write(const std::string& utf8) {
  output_ += utf8;
  if (echo_) {
    std::fwrite(utf8.data(), 1, utf8.size(), echo_);
    std::fflush(echo_);
  }
}

int HeadlessFront::answer(const std::vector<int>& allowed) {
  int fallback = allowed.front();
  if (defaultAnswer_ && std::find(allowed.begin(), allowed.end(), *defaultAnswer_) != allowed.end())
    fallback = *defaultAnswer_;
  int chosen = fallback;
  const char* how = "default";
  if (!answers_.empty()) {
    int scripted = answers_.front();
    answers_.pop_front();
    if (std::find(allowed.begin(), allowed.end(), scripted) != allowed.end()) {
      chosen = scripted;
      how = "scripted";
    } else {
      write("  scripted answer " + hostAnswerName(scripted).toUtf8() +
            " is not one this box gives; taking the default\n");
    }
  }
  write("  answer: " + hostAnswerName(chosen).toUtf8() + " (" + how + ")\n");
  return chosen;
}

int HeadlessFront::showMessageBox(const HostMessageBox& box) {
  write("message box \"" + plain(box.caption) + "\"" + iconName(box.icon) + ":\n" +
        indent(plain(box.text)) + "\n");
  return answer(box.answers());
}

int HeadlessFront::showTaskDialog(const HostTaskDialog& dialog) {
  std::string text = "task dialog \"" + plain(dialog.windowTitle) + "\"" + iconName(dialog.icon) +
                     ":\n" + indent(plain(dialog.mainInstruction)) + "\n";
  if (!dialog.content.isEmpty()) text += indent(plain(dialog.content)) + "\n";
  for (const HostTaskDialogButton& b : dialog.buttons)
    text += "  [" + std::to_string(b.id) + "] " + indent(plain(b.text)).substr(2) + "\n";
  write(text);
  return answer(dialog.answers());
}

void HeadlessFront::writeCommandLine(const OdString& text) {
  write(text.toUtf8());
}

bool HeadlessFront::showHelpPage(const OdString& page) {
  write("help: " + page.toUtf8() + "\n");
  return true;
}
