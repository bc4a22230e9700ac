#include "HostCommandLine.h"

#include <algorithm>
#include <cstdarg>
#include <exception>
#include <memory>

#include "HostEdInputContextReactor.h"
#include "HostFormat.h"
#include "HostFrontend.h"

namespace {
bool isSeparator(wchar_t c) {
  return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r';
}

OdString whatOf(const std::exception& e) {
  return OdString::fromUtf8(e.what());
}
}  // namespace

HostCommandLine::HostCommandLine(HostCommandRegistry& registry, HostFrontend& front)
    : registry_(registry), front_(front) {}

void HostCommandLine::submit(const OdString& text) {
  input_ += text.str();
  if (!isRunning()) drain();
}

void HostCommandLine::drain() {
  // A command run from here may submit more text; the loop below picks it up.
  if (draining_) return;
  draining_ = true;
  OdString word;
  while (!isRunning() && takeWord(word)) run(word);
  draining_ = false;
}

bool HostCommandLine::takeWord(OdString& word) {
  for (;;) {
    std::size_t start = 0;
    while (start < input_.size() && isSeparator(input_[start])) ++start;
    if (start == input_.size()) {
      input_.clear();
      return false;
    }
    std::size_t end;
    std::wstring text;
    if (input_[start] == L'"') {
      std::size_t close = input_.find(L'"', start + 1);
      if (close == std::wstring::npos || close + 1 >= input_.size()) return false;
      text = input_.substr(start + 1, close - start - 1);
      end = close + 1;
      if (!isSeparator(input_[end])) {
        // Text glued to a closing quote belongs to the same word.
        std::size_t sep = end;
        while (sep < input_.size() && !isSeparator(input_[sep])) ++sep;
        if (sep == input_.size()) return false;
        text += input_.substr(end, sep - end);
        end = sep;
      }
    } else {
      end = start;
      while (end < input_.size() && !isSeparator(input_[end])) ++end;
      if (end == input_.size()) return false;
      text = input_.substr(start, end - start);
    }
    input_.erase(0, end + 1);
    if (text.empty()) continue;  // "" is an empty entry
    word = OdString(std::move(text));
    return true;
  }
}

template <class Call>
void HostCommandLine::notify(const OdString& commandName, Call call) {
  // A reactor may remove itself or others while being told; only those still added are.
  std::vector<HostEdInputContextReactor*> reactors = reactors_;
  for (HostEdInputContextReactor* reactor : reactors) {
    if (std::find(reactors_.begin(), reactors_.end(), reactor) == reactors_.end()) continue;
    try {
      call(reactor);
    } catch (const std::exception& e) {
      printf(L"a command reactor failed after %ls: %ls\n", commandName.c_str(), whatOf(e).c_str());
    } catch (...) {
      printf(L"a command reactor failed after %ls\n", commandName.c_str());
    }
  }
}

HostCommandResult HostCommandLine::run(const OdString& name) {
  HostCommandResult result;
  const HostCommandRegistry::Command* found = registry_.find(name);
  if (!found) {
    printf(L"unknown command \"%ls\"\n", name.c_str());
    result.outcome = HostCommandOutcome::kUnknown;
    return result;
  }
  if (isRunning() && !(found->flags & kHostCmdTransparent)) {
    printf(L"command %ls cannot run while %ls runs\n", found->name.c_str(),
           currentCommand().c_str());
    result.outcome = HostCommandOutcome::kBusy;
    return result;
  }
  // Copy what is needed: the command may change the registry while it runs.
  const OdString commandName = found->name;
  const UICmdCreator creator = found->creator;
  print(OdString(L"Command: ") + commandName + L"\n");
  running_.push_back(commandName);
  notify(commandName, [&](HostEdInputContextReactor* r) { r->commandWillStart(commandName); });
  OdString failure;
  try {
    std::unique_ptr<UICmdProcess> command(creator());
    if (!command) {
      failure = L"the command could not be created";
    } else {
      result.value = command->execute();
      result.outcome = HostCommandOutcome::kCompleted;
    }
  } catch (const std::exception& e) {
    failure = whatOf(e);
    if (failure.isEmpty()) failure = L"unknown error";
  } catch (...) {
    failure = L"unknown error";
  }
  running_.pop_back();
  if (result.outcome == HostCommandOutcome::kCompleted) {
    notify(commandName, [&](HostEdInputContextReactor* r) { r->commandEnded(commandName); });
  } else {
    result.outcome = HostCommandOutcome::kFailed;
    printf(L"command %ls failed: %ls\n", commandName.c_str(), failure.c_str());
    notify(commandName,
           [&](HostEdInputContextReactor* r) { r->commandFailed(commandName, failure); });
  }
  notify(commandName, [&](HostEdInputContextReactor* r) { r->afterCommand(commandName); });
  if (!isRunning()) drain();
  return result;
}

void HostCommandLine::print(const OdString& text) {
  front_.writeCommandLine(text);
}

void HostCommandLine::printf(const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  OdString text = hostVFormat(format, args);
  va_end(args);
  print(text);
}

void HostCommandLine::addReactor(HostEdInputContextReactor* reactor) {
  if (reactor && std::find(reactors_.begin(), reactors_.end(), reactor) == reactors_.end())
    reactors_.push_back(reactor);
}

void HostCommandLine::removeReactor(HostEdInputContextReactor* reactor) {
  std::erase(reactors_, reactor);
}
