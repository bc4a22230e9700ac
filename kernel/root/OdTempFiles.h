#pragma once

#include <string>

// The temporary files and folders this process is writing, kept where a signal handler can
// reach them: when the process is told to stop (Ctrl-C, a terminal closed, a termination
// request), the handler removes them before the process ends, so a stopped run leaves nothing
// half-written behind. What is registered is removed only by removeAllNow; removing an entry
// just forgets it.
//
// A fixed number of entries is kept (kSlots); a path that does not fit (too many at once, or
// longer than kPathBytes) is not registered and add returns -1: the file is then left behind
// by a killed run like any other, and the writer's stale-file sweep removes it later.
// Registration may happen from any thread.
class OdTempFiles {
 public:
  static constexpr int kSlots = 64;
  static constexpr std::size_t kPathBytes = 4096;

  // Registers a file (or, with `folder`, a folder whose files are removed with it); returns
  // the entry to forget, or -1 when it could not be registered.
  static int add(const std::string& path, bool folder = false) noexcept;
  // Forgets an entry (the caller removed or kept the file itself). -1 is ignored.
  static void forget(int entry) noexcept;

  // Removes every registered file, then empties and removes every registered folder (files
  // directly in it). Only async-signal-safe calls: for signal handlers, and for nothing else.
  static void removeAllNow() noexcept;
};
