#pragma once

#include <signal.h>
#include <sys/types.h>

namespace stcheck {

// Makes a stopped stcheck leave nothing behind. On SIGINT (Ctrl-C), SIGTERM, SIGHUP or
// SIGPIPE the handler stops the worker processes (each gets SIGTERM and is waited for, so it
// removes its own temporary files), removes every temporary file and folder registered with
// OdTempFiles, and ends the process by the same signal, so whoever started it sees how it
// ended. A drawing being written is then either the old file or the new one, whole: the new
// file is renamed into place in one step, and its temporary file is what gets removed.
class StopSignals {
 public:
  static constexpr int kMaxWorkers = 256;
  // The signals that stop a run.
  static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

  // Installs the handlers; once per process, before any work.
  static void install();
  // Worker processes to stop with the run (at most kMaxWorkers at a time; add and remove may
  // be called with the signals arriving at any moment).
  static void addWorker(pid_t pid) noexcept;
  static void removeWorker(pid_t pid) noexcept;
};

}  // namespace stcheck
