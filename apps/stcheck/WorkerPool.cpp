#include "WorkerPool.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>

#include "StopSignals.h"

extern char** environ;

namespace stcheck {

namespace {

struct Running {
  std::size_t index;
  std::filesystem::path log;
};

std::string readAll(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// Starts one task with its standard output and error going to `log`; returns the process
// id, or -1 with `error` set. The child is told to stop when this process dies, however it
// dies, so a killed run leaves no workers going on with its drawings.
pid_t spawn(const WorkerPool::Task& task, const std::filesystem::path& log, std::string& error) {
  std::vector<char*> argv;
  for (const std::string& a : task.argv) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  int report[2];  // the child's exec failure, if any
  if (::pipe2(report, O_CLOEXEC) != 0) {
    error = std::string("cannot start ") + task.argv[0] + ": " + std::strerror(errno);
    return -1;
  }
  const pid_t parent = ::getpid();
  // Signals wait while the child is made: a child must never run this process's stop
  // handler, which would stop its sibling workers.
  sigset_t all, before;
  sigfillset(&all);
  ::sigprocmask(SIG_BLOCK, &all, &before);
  pid_t pid = ::fork();
  if (pid == 0) {
    // Only async-signal-safe calls until exec.
    int failure = 0;
    struct sigaction fallback {};
    fallback.sa_handler = SIG_DFL;
    for (int s : StopSignals::kSignals) {
      struct sigaction old {};
      ::sigaction(s, nullptr, &old);
      if (old.sa_handler != SIG_IGN) ::sigaction(s, &fallback, nullptr);
    }
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent) ::_exit(127);
    int fd = ::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0 || ::dup2(fd, STDOUT_FILENO) < 0 || ::dup2(fd, STDERR_FILENO) < 0) {
      failure = errno;
    } else {
      ::execve(argv[0], argv.data(), environ);
      failure = errno;
    }
    ssize_t ignored = ::write(report[1], &failure, sizeof failure);
    (void)ignored;
    ::_exit(127);
  }
  const int forkError = errno;
  if (pid > 0) StopSignals::addWorker(pid);
  ::sigprocmask(SIG_SETMASK, &before, nullptr);
  ::close(report[1]);
  if (pid < 0) {
    errno = forkError;
    error = std::string("cannot start ") + task.argv[0] + ": " + std::strerror(errno);
    ::close(report[0]);
    return -1;
  }
  int failure = 0;
  ssize_t n = 0;
  while ((n = ::read(report[0], &failure, sizeof failure)) < 0 && errno == EINTR) {
  }
  ::close(report[0]);
  if (n == static_cast<ssize_t>(sizeof failure)) {
    while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
    StopSignals::removeWorker(pid);
    error = std::string("cannot start ") + task.argv[0] + ": " + std::strerror(failure);
    return -1;
  }
  return pid;
}

}  // namespace

std::vector<WorkerPool::Outcome> WorkerPool::run(const std::vector<Task>& tasks, int jobs,
                                                 const std::filesystem::path& scratch,
                                                 const Progress& progress) {
  std::vector<Outcome> outcomes(tasks.size());
  std::map<pid_t, Running> running;
  std::size_t next = 0, done = 0;
  jobs = std::max(1, jobs);
  auto finish = [&](std::size_t index) {
    ++done;
    if (progress) progress(done, index);
  };
  while (done < tasks.size()) {
    while (next < tasks.size() && static_cast<int>(running.size()) < jobs) {
      std::size_t index = next++;
      std::filesystem::path log = scratch / ("worker-" + std::to_string(index) + ".log");
      pid_t pid = spawn(tasks[index], log, outcomes[index].startError);
      if (pid < 0) {
        finish(index);
        continue;
      }
      running[pid] = {index, log};
    }
    if (running.empty()) continue;
    int status = 0;
    pid_t pid = waitpid(-1, &status, 0);
    if (pid < 0) {
      if (errno == EINTR) continue;
      break;  // no children left to wait for: nothing more will end
    }
    auto it = running.find(pid);
    if (it == running.end()) continue;
    StopSignals::removeWorker(pid);
    Outcome& outcome = outcomes[it->second.index];
    if (WIFEXITED(status)) outcome.exitCode = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
    outcome.output = readAll(it->second.log);
    std::size_t index = it->second.index;
    running.erase(it);
    finish(index);
  }
  return outcomes;
}

std::filesystem::path WorkerPool::selfExecutable() {
  std::error_code ec;
  std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", ec);
  return ec ? std::filesystem::path() : self;
}

}  // namespace stcheck
