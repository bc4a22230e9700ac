#pragma once

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "CheckReport.h"

class HostDocument;

namespace stcheck {

class ModuleHost;
class DrawingLock;

struct CheckOptions {
  std::vector<std::string> paths;
  std::vector<std::string> standards;  // for this run instead of the drawings' own
  std::string format = "text";
  std::string output;  // empty for standard output
  int jobs = 1;
  bool fix = false;
  bool showIgnored = false;
};

// A headless host with the standards module loaded, checking drawings one at a time the way
// the host's own silent check does: the drawing is opened as a document, the module gives it
// its check manager, and the module's silent check runs with the settings of this run.
//
// The host reads the user's configuration and never writes it (ModuleHost::kPrivateCopy), so
// the plug-in registry and settings are the user's, while the settings this run needs
// (automatic fixing, collecting ignored problems) stay in memory.
//
// With --fix, a drawing is written back only through CheckSession's own guarded path: locked
// from reading to writing, its original kept as its backup from the bytes that were checked,
// and left as it is when it may not be written (the problems are then reported unfixed, with
// the reason in `notFixed`).
//
// One session per process: the host and the module are process-wide. Throws OdError when the
// module cannot be loaded.
class CheckSession {
 public:
  explicit CheckSession(const CheckOptions& options);
  ~CheckSession();
  CheckSession(const CheckSession&) = delete;
  CheckSession& operator=(const CheckSession&) = delete;

  // Checks one drawing; every failure (unreadable drawing, no or missing standards, a save
  // that failed) is reported in the result's `error`, never thrown.
  DrawingReport check(const std::filesystem::path& drawing);

 private:
  DrawingReport checkOpen(const std::filesystem::path& drawing, DrawingReport& report);
  // Writes the fixed drawing over `drawing`, keeping the original as its backup, and returns
  // where the backup went; throws OdError naming the file and the reason, and then both
  // files are as they were.
  std::filesystem::path writeFixed(HostDocument& doc, const DrawingLock& lock,
                                   const std::filesystem::path& drawing);

  CheckOptions options_;
  std::set<std::filesystem::path> swept_;  // folders already rid of stale temporary files
  std::unique_ptr<ModuleHost> module_;
};

}  // namespace stcheck
