#include "WorkerPool.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>

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
// id, or -1 with `error` set.
pid_t spawn(const WorkerPool::Task& task, const std::filesystem::path& log, std::string& error) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, log.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
  std::vector<char*> argv;
  for (const std::string& a : task.argv) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  pid_t pid = -1;
  int rc = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) {
    error = std::string("cannot start ") + task.argv[0] + ": " + std::strerror(rc);
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
