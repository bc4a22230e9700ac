#pragma once

#include <string>
#include <vector>

#include "HostCommandRegistry.h"
#include "OdString.h"

class HostFrontend;
class HostEdInputContextReactor;

// How a command run by name ended.
enum class HostCommandOutcome {
  kCompleted,  // the command ran and returned; see HostCommandResult::value
  kUnknown,    // no command of that name is registered
  kFailed,     // the command threw, or its creator made nothing
  kBusy,       // another command runs and this one is not transparent
};

struct HostCommandResult {
  HostCommandOutcome outcome = HostCommandOutcome::kUnknown;
  bool value = false;  // what execute() returned, when completed
};

// The command line: text typed or sent to the host, split into words, the first word of each
// entry naming a command that then runs, with output printed back.
//
// Words end at a blank, tab or line break, so "CHECKSTANDARDS " (with its trailing blank)
// submits the command while "CHECKSTANDARDS" alone waits for more text. A word in double
// quotes may contain blanks ("\"my file.dxf\" "). Empty entries are ignored.
//
// Text submitted while a command runs waits until that command (and any command it started)
// has completed; a running command may instead take the next words as its input
// (takeWord), as a script answers a prompt.
//
// After each command the input-context reactors are told (HostEdInputContextReactor), in
// the order they were added. Errors never escape: an unknown command, a command or reactor
// that throws, each prints one line on the command line. One thread only.
class HostCommandLine {
 public:
  HostCommandLine(HostCommandRegistry& registry, HostFrontend& front);
  HostCommandLine(const HostCommandLine&) = delete;
  HostCommandLine& operator=(const HostCommandLine&) = delete;

  // Adds text to the input and, when no command is running, runs every complete entry.
  void submit(const OdString& text);
  // Adds text to the input for a running command to take (takeWord); runs nothing.
  void feed(const OdString& text) { input_ += text.str(); }
  // Runs the command `name` now (an unknown name is reported, not thrown). While another
  // command runs, only a transparent command runs (within it); others give kBusy.
  // When the outermost command completes, pending input runs.
  HostCommandResult run(const OdString& name);
  // The next complete word of the input, taken from it; false when there is none.
  bool takeWord(OdString& word);

  // Writes text to the command-line window.
  void print(const OdString& text);
  // printf-style output; %ls takes a wide text, %s a narrow (UTF-8) one.
  void printf(const wchar_t* format, ...);

  bool isRunning() const noexcept { return !running_.empty(); }
  // The command running innermost, or empty.
  OdString currentCommand() const { return running_.empty() ? OdString() : running_.back(); }
  // Input not yet taken, complete or not.
  OdString pendingInput() const { return OdString(input_); }
  void clearPendingInput() { input_.clear(); }

  // Reactors are not owned; adding one twice keeps one entry.
  void addReactor(HostEdInputContextReactor* reactor);
  void removeReactor(HostEdInputContextReactor* reactor);

 private:
  void drain();
  template <class Call>
  void notify(const OdString& commandName, Call call);

  HostCommandRegistry& registry_;
  HostFrontend& front_;
  std::wstring input_;
  std::vector<OdString> running_;
  std::vector<HostEdInputContextReactor*> reactors_;
  bool draining_ = false;
};
