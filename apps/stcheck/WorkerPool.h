#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace stcheck {

// Runs tasks as child processes, at most `jobs` at a time. The module checks one drawing at
// a time on one thread, so a batch goes faster only in several processes; a child that
// crashes on a bad drawing costs that drawing alone.
class WorkerPool {
 public:
  struct Task {
    std::vector<std::string> argv;  // argv[0] is the program to run
  };
  struct Outcome {
    int exitCode = -1;       // -1 when the process did not exit normally
    int signal = 0;          // the signal that ended it, or 0
    std::string output;      // standard output and standard error together
    std::string startError;  // why the process could not be started; empty when it ran
  };

  // Called after each task ends, with the number done so far and the task's index.
  using Progress = std::function<void(std::size_t done, std::size_t index)>;

  // Runs every task, keeping `jobs` (at least 1) running, and returns their outcomes in the
  // order of `tasks`. `scratch` is an existing folder for the children's output files.
  static std::vector<Outcome> run(const std::vector<Task>& tasks, int jobs,
                                  const std::filesystem::path& scratch, const Progress& progress);

  // The running program's own executable, to start workers of the same build.
  static std::filesystem::path selfExecutable();
};

}  // namespace stcheck
