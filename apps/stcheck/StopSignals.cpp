#include "StopSignals.h"

#include <signal.h>
#include <sys/wait.h>

#include <atomic>
#include <cerrno>

#include "OdTempFiles.h"

namespace stcheck {

namespace {

std::atomic<pid_t> g_workers[StopSignals::kMaxWorkers];

void onStop(int signal) {
  for (auto& worker : g_workers)
    if (pid_t pid = worker.load(); pid > 0) ::kill(pid, SIGTERM);
  for (auto& worker : g_workers) {
    pid_t pid = worker.load();
    if (pid <= 0) continue;
    while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  OdTempFiles::removeAllNow();
  struct sigaction fallback {};
  fallback.sa_handler = SIG_DFL;
  sigemptyset(&fallback.sa_mask);
  ::sigaction(signal, &fallback, nullptr);
  // The signal is blocked while its handler runs; it ends the process once unblocked.
  ::raise(signal);
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, signal);
  ::sigprocmask(SIG_UNBLOCK, &only, nullptr);
}

}  // namespace

void StopSignals::install() {
  struct sigaction action {};
  action.sa_handler = onStop;
  // One stop at a time: the other stop signals wait until the first has cleaned up.
  sigemptyset(&action.sa_mask);
  for (int s : kSignals) sigaddset(&action.sa_mask, s);
  for (int s : kSignals) {
    struct sigaction old {};
    ::sigaction(s, nullptr, &old);
    // A signal ignored by whoever started the run (nohup) stays ignored.
    if (old.sa_handler == SIG_IGN) continue;
    ::sigaction(s, &action, nullptr);
  }
}

void StopSignals::addWorker(pid_t pid) noexcept {
  for (auto& worker : g_workers) {
    pid_t free = 0;
    if (worker.compare_exchange_strong(free, pid)) return;
  }
}

void StopSignals::removeWorker(pid_t pid) noexcept {
  for (auto& worker : g_workers) {
    pid_t mine = pid;
    if (worker.compare_exchange_strong(mine, 0)) return;
  }
}

}  // namespace stcheck
