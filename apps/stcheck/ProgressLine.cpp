#include "ProgressLine.h"

#include <unistd.h>

#include "TerminalText.h"

namespace stcheck {

ProgressLine::ProgressLine(std::FILE* stream)
    : stream_(stream), active_(stream && isatty(fileno(stream))) {}

void ProgressLine::show(std::size_t done, std::size_t total, const std::string& what) {
  if (!active_) return;
  // A file name may hold control characters; only this line's own escapes reach the terminal.
  std::string line =
      "[" + std::to_string(done) + "/" + std::to_string(total) + "] " + terminalSafe(what);
  // Keep the line within a common terminal width so that it never wraps.
  constexpr std::size_t kWidth = 78;
  if (line.size() > kWidth) {
    std::size_t cut = kWidth - 3;
    while (cut > 0 && (static_cast<unsigned char>(line[cut]) & 0xC0) == 0x80) --cut;  // UTF-8
    line = line.substr(0, cut) + "...";
  }
  std::fprintf(stream_, "\r\x1b[K%s", line.c_str());
  std::fflush(stream_);
  shown_ = true;
}

void ProgressLine::clear() {
  if (!active_ || !shown_) return;
  std::fputs("\r\x1b[K", stream_);
  std::fflush(stream_);
  shown_ = false;
}

}  // namespace stcheck
