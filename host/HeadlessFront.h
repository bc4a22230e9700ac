#pragma once

#include <cstdio>
#include <deque>
#include <optional>
#include <string>

#include "HostFrontend.h"

// The front of a host without a screen: prints what a window system would show and answers
// message boxes and task dialogs from a queue of scripted answers.
//
// Each box takes the next queued answer; with none queued it gets the default answer set
// here, or else the box's own default (its first button). An answer the box cannot give is
// reported and replaced by that default. Everything written (command-line text and the
// boxes with their answers) is kept as UTF-8 and, when an echo stream is given, printed to it
// as it comes.
class HeadlessFront : public HostFrontend {
 public:
  // `echo` (not owned) receives the output as it comes; null keeps it silent.
  explicit HeadlessFront(std::FILE* echo = stdout) : echo_(echo) {}

  // Queues an answer (a HostAnswer, or a task dialog's button id).
  void queueAnswer(int answer) { answers_.push_back(answer); }
  std::size_t queuedAnswers() const noexcept { return answers_.size(); }
  void clearAnswers() { answers_.clear(); }
  // The answer given when none is queued; nullopt for each box's own default.
  void setDefaultAnswer(std::optional<int> answer) { defaultAnswer_ = answer; }

  // Everything written so far, as UTF-8.
  const std::string& output() const noexcept { return output_; }
  void clearOutput() { output_.clear(); }

  int showMessageBox(const HostMessageBox& box) override;
  int showTaskDialog(const HostTaskDialog& dialog) override;
  void writeCommandLine(const OdString& text) override;
  bool showHelpPage(const OdString& page) override;

 private:
  // Picks the answer among `allowed` (default first) and prints it.
  int answer(const std::vector<int>& allowed);
  void write(const std::string& utf8);

  std::FILE* echo_;
  std::deque<int> answers_;
  std::optional<int> defaultAnswer_;
  std::string output_;
};
