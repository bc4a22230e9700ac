#include "CheckCommand.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <optional>
#include <set>
#include <sstream>

#include "BackupName.h"
#include "CheckSession.h"
#include "DrawingFinder.h"
#include "FileKind.h"
#include "HtmlReport.h"
#include "JsonReport.h"
#include "JunitReport.h"
#include "OdAtomicFile.h"
#include "OdError.h"
#include "ProgressLine.h"
#include "ReportTarget.h"
#include "SarifReport.h"
#include "ScratchFolder.h"
#include "TerminalText.h"
#include "TextReport.h"
#include "WorkerPool.h"

namespace stcheck {

namespace {

std::string render(const CheckReport& report, const CheckOptions& options) {
  if (options.format == "json") return JsonReport::write(report);
  if (options.format == "html") return HtmlReport::write(report);
  if (options.format == "junit") return JunitReport::write(report);
  if (options.format == "sarif") return SarifReport::write(report);
  bool color = options.output.empty() && isatty(STDOUT_FILENO) && !std::getenv("NO_COLOR");
  return TextReport::write(report, color);
}

// What a worker that left no report tells about its drawing.
std::string workerFailure(const WorkerPool::Outcome& outcome) {
  if (!outcome.startError.empty()) return outcome.startError;
  std::string last;
  std::istringstream lines(outcome.output);
  for (std::string line; std::getline(lines, line);)
    if (!line.empty()) last = line;
  std::string how = outcome.signal
                        ? "the checker was stopped by signal " + std::to_string(outcome.signal)
                        : "the checker ended with status " + std::to_string(outcome.exitCode);
  return last.empty() ? how : how + ": " + last;
}

// What the workers said besides their reports (a configuration set aside, a plug-in library
// that did not load), each line once however many workers said it, as one process would.
void passOnWarnings(const std::vector<WorkerPool::Outcome>& outcomes) {
  std::set<std::string> said;
  for (const WorkerPool::Outcome& outcome : outcomes) {
    std::istringstream lines(outcome.output);
    for (std::string line; std::getline(lines, line);)
      if (!line.empty() && said.insert(line).second) std::fprintf(stderr, "%s\n", line.c_str());
  }
}

// A batch of drawings for one worker process, and where it writes its report.
struct Chunk {
  std::size_t first = 0;  // index of its first drawing
  std::size_t count = 0;
  std::filesystem::path report;
};

WorkerPool::Task workerTask(const std::filesystem::path& self, const CheckOptions& options,
                            const std::vector<std::filesystem::path>& drawings,
                            const Chunk& chunk) {
  WorkerPool::Task task;
  task.argv = {self.string(), "check", "--format", "json", "-o", chunk.report.string()};
  for (const std::string& s : options.standards) {
    task.argv.push_back("--standard");
    task.argv.push_back(std::filesystem::absolute(s).string());
  }
  if (options.fix) task.argv.push_back("--fix");
  if (options.showIgnored) task.argv.push_back("--show-ignored");
  task.argv.push_back("--");
  for (std::size_t i = chunk.first; i < chunk.first + chunk.count; ++i)
    task.argv.push_back(drawings[i].string());
  return task;
}

// The drawings of a chunk's report, or false when the worker left none or another one (it
// crashed, or was killed).
bool readChunk(const Chunk& chunk, std::vector<DrawingReport>& out) {
  std::ifstream in(chunk.report, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  try {
    CheckReport part = JsonReport::read(text.str());
    if (part.drawings.size() != chunk.count) return false;
    out = std::move(part.drawings);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

// Checks the drawings in worker processes. Starting a worker costs about as much as checking
// a small drawing, so each takes a run of drawings: a few runs per job keep the jobs busy to
// the end. A worker that leaves no report (a drawing crashed it) has its drawings checked
// again one per worker, so only the drawing at fault is reported as not checked.
std::vector<DrawingReport> checkInWorkers(const std::vector<std::filesystem::path>& drawings,
                                          const CheckOptions& options) {
  std::filesystem::path self = WorkerPool::selfExecutable();
  if (self.empty())
    throw OdError(eFileAccessError,
                  "cannot start worker processes: the running program is unknown");
  ScratchFolder::removeStale();
  ScratchFolder folder;
  const std::filesystem::path& scratch = folder.path();

  const std::size_t chunkCount =
      std::min(drawings.size(), static_cast<std::size_t>(options.jobs) * 4);
  std::vector<Chunk> chunks;
  for (std::size_t c = 0, first = 0; c < chunkCount; ++c) {
    std::size_t count = drawings.size() / chunkCount + (c < drawings.size() % chunkCount ? 1 : 0);
    chunks.push_back({first, count, scratch / ("chunk-" + std::to_string(c) + ".json")});
    first += count;
  }
  std::vector<WorkerPool::Task> tasks;
  for (const Chunk& chunk : chunks) tasks.push_back(workerTask(self, options, drawings, chunk));

  ProgressLine progress(stderr);
  std::size_t checked = 0;
  auto ran = WorkerPool::run(tasks, options.jobs, scratch, [&](std::size_t, std::size_t index) {
    checked += chunks[index].count;
    progress.show(checked, drawings.size(), drawings[chunks[index].first].string());
  });

  std::vector<DrawingReport> reports(drawings.size());
  std::vector<Chunk> retry;
  for (const Chunk& chunk : chunks) {
    std::vector<DrawingReport> part;
    if (!readChunk(chunk, part)) {
      for (std::size_t i = chunk.first; i < chunk.first + chunk.count; ++i)
        retry.push_back({i, 1, scratch / ("drawing-" + std::to_string(i) + ".json")});
      continue;
    }
    for (std::size_t i = 0; i < chunk.count; ++i) reports[chunk.first + i] = std::move(part[i]);
  }
  if (!retry.empty()) {
    std::vector<WorkerPool::Task> singles;
    for (const Chunk& chunk : retry) singles.push_back(workerTask(self, options, drawings, chunk));
    auto outcomes = WorkerPool::run(singles, options.jobs, scratch, nullptr);
    for (std::size_t r = 0; r < retry.size(); ++r) {
      std::vector<DrawingReport> part;
      DrawingReport& report = reports[retry[r].first];
      if (readChunk(retry[r], part))
        report = std::move(part.front());
      else
        report.error = workerFailure(outcomes[r]);
    }
  }
  progress.clear();
  passOnWarnings(ran);
  for (std::size_t i = 0; i < drawings.size(); ++i) reports[i].path = drawings[i].string();
  return reports;
}

std::vector<DrawingReport> checkHere(const std::vector<std::filesystem::path>& drawings,
                                     const CheckOptions& options) {
  std::vector<DrawingReport> reports;
  CheckSession session(options);
  ProgressLine progress(stderr);
  for (std::size_t i = 0; i < drawings.size(); ++i) {
    progress.show(i + 1, drawings.size(), drawings[i].string());
    reports.push_back(session.check(drawings[i]));
  }
  return reports;
}

int runCheck(const CheckOptions& options) {
  for (const std::string& s : options.standards) {
    if (std::string problem = standardsFileProblem(s); !problem.empty()) {
      std::fprintf(stderr, "stcheck: %s\n", terminalSafe(problem).c_str());
      return 2;
    }
  }
  DrawingFinder::Found found = DrawingFinder::find(options.paths);
  std::optional<ReportTarget> target;
  if (!options.output.empty()) {
    target.emplace(options.output);
    for (const std::string& s : options.standards) target->protect(s, "a standards file");
    for (const auto& drawing : found.drawings) {
      target->protect(drawing, "a drawing being checked");
      for (const auto& bak : BackupName::candidates(drawing))
        target->protect(bak, "the backup of a drawing being checked");
    }
    if (!target->refusal().empty()) {
      std::fprintf(stderr, "stcheck: %s\n", target->refusal().c_str());
      return 2;
    }
    OdAtomicFile::removeStale(std::filesystem::absolute(options.output).parent_path());
  }
  CheckReport report;
  report.toolVersion = STAUDIT_VERSION;
  for (const auto& [path, why] : found.missing) {
    DrawingReport missing;
    missing.path = path;
    missing.error = why;
    report.drawings.push_back(std::move(missing));
  }
  try {
    auto checked = options.jobs > 1 && found.drawings.size() > 1
                       ? checkInWorkers(found.drawings, options)
                       : checkHere(found.drawings, options);
    for (auto& d : checked) report.drawings.push_back(std::move(d));
  } catch (const OdError& e) {
    std::fprintf(stderr, "stcheck: %s\n", e.description().toUtf8().c_str());
    return 2;
  }
  std::string text = render(report, options);
  if (!target) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
    return report.exitCode();
  }
  // The drawings' own standards files are known only now.
  for (const DrawingReport& d : report.drawings)
    for (const std::string& s : d.standards) target->protect(s, "a standards file of " + d.path);
  try {
    target->write(text);
  } catch (const OdError& e) {
    std::fprintf(stderr, "stcheck: %s\n", e.description().toUtf8().c_str());
    return 2;
  }
  return report.exitCode();
}

}  // namespace

void CheckCommand::add(CLI::App& app, int& exitCode) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App* check =
      app.add_subcommand("check", "Check drawings against their drawing standards and report");
  check->add_option("PATH", options->paths, "Drawings, or folders searched for .dxf drawings")
      ->required();
  check->add_option("--standard", options->standards,
                    "Standards file (.dws) to check against instead of the drawing's own, for "
                    "this run only; repeat for several");
  check->add_option("--format", options->format, "Report format")
      ->check(CLI::IsMember({"text", "json", "html", "junit", "sarif"}));
  check->add_option("-o,--output", options->output, "Write the report to FILE");
  // A number first, so that "abc" is not called out of range.
  const CLI::Validator wholeNumber(
      [](std::string& text) {
        const std::size_t first = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
        const bool number =
            text.size() > first && text.find_first_not_of("0123456789", first) == std::string::npos;
        return number ? std::string() : "'" + terminalSafe(text) + "' is not a whole number";
      },
      "");
  check->add_option("--jobs", options->jobs, "Check drawings in N worker processes")
      ->check(wholeNumber)
      ->check(CLI::Range(1, 256));
  check->add_flag("--fix", options->fix,
                  "Apply the recommended fixes and write the drawing back, keeping the "
                  "original as NAME.bak");
  check->add_flag("--show-ignored", options->showIgnored,
                  "Report problems that users marked as ignored");
  check->callback([options, &exitCode] { exitCode = runCheck(*options); });
}

}  // namespace stcheck
