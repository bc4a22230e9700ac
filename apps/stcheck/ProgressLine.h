#pragma once

#include <cstdio>
#include <string>

namespace stcheck {

// One line of progress on a terminal ("[3/40] plans/level-2.dxf"), rewritten in place and
// erased at the end. Says nothing when the stream is not a terminal, so logs and pipes get
// only the report.
class ProgressLine {
 public:
  explicit ProgressLine(std::FILE* stream);
  ~ProgressLine() { clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void show(std::size_t done, std::size_t total, const std::string& what);
  void clear();

 private:
  std::FILE* stream_;
  bool active_;
  bool shown_ = false;
};

}  // namespace stcheck
