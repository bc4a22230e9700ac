#include "CheckSession.h"

#include <cstdlib>
#include <system_error>

#include "HeadlessHost.h"
#include "HostConfigTree.h"
#include "ModuleHost.h"
#include "OdDbDatabase.h"
#include "OdError.h"
#include "OdRxClass.h"
#include "ProblemReader.h"
#include "StAppServices.h"
#include "StDbReaderWriter.h"
#include "StDialogs.h"
#include "StEnumDWSPlugin.h"
#include "StErrorAccumulatorImpl.h"
#include "StExports.h"
#include "StManager.h"
#include "StManagerCache.h"
#include "StManagerImpl.h"
#include "StManagerReactor.h"
#include "StSettingsStorage.h"

namespace stcheck {

namespace {

// Where the module's silent-check report goes while a drawing is checked: instead of a
// report dialog, the problems are read into the drawing's report while the errors, fixes and
// objects are still there.
std::vector<ReportProblem>* g_problems = nullptr;

int collectReport(st::StManager*, const st::StErrorAccumulatorImpl& found) {
  if (g_problems) {
    for (const auto& entry : found.errors())
      g_problems->push_back(ProblemReader::read(entry, false));
    for (const auto& entry : found.fixedErrors())
      g_problems->push_back(ProblemReader::read(entry, true));
  }
  return 1;  // as if the report was closed: nothing interactive follows
}

// The counts of the check, as the manager announces them.
class CountListener : public st::StManagerReactor {
 public:
  void checkStatistics(std::uint32_t found, std::uint32_t fixedAutomatically,
                       std::uint32_t fixedManually, std::uint32_t ignored) override {
    counts = {found, fixedAutomatically, fixedManually, ignored};
  }
  void missingStandardsFile() override { standardsUnusable = true; }
  ReportCounts counts;
  bool standardsUnusable = false;
};

// Runs `undo` when the scope ends, whatever the way out.
template <class F>
class Finally {
 public:
  explicit Finally(F undo) : undo_(std::move(undo)) {}
  ~Finally() { undo_(); }
  Finally(const Finally&) = delete;
  Finally& operator=(const Finally&) = delete;

 private:
  F undo_;
};

// Why the standards file `path` could not be used, in the reader's own words; empty when it
// reads as a drawing.
std::string unreadableReason(const std::string& path) {
  try {
    OdDbDatabase::readFile(path);
  } catch (const OdError& e) {
    return e.description().toUtf8();
  } catch (const std::exception& e) {
    return e.what();
  }
  return std::string();
}

// A CAD user's backup name: the drawing's name with the extension ".bak".
std::filesystem::path backupPath(const std::filesystem::path& drawing) {
  std::filesystem::path bak = drawing;
  bak.replace_extension(".bak");
  return bak;
}

}  // namespace

CheckSession::CheckSession(const CheckOptions& options)
    : options_(options), module_(std::make_unique<ModuleHost>(ModuleHost::Config::kPrivateCopy)) {
  HostConfigTree::Batch batch(module_->host().app().configTree());
  st::StSettingsStorage* settings = ::stSettingsStorage();
  settings->setAutoFixProperties(options_.fix);
  settings->setShowIgnoredProblems(options_.showIgnored);
  st::StDialogs dialogs = st::stDialogs();
  dialogs.errorReport = collectReport;
  st::stSetDialogs(dialogs);
}

CheckSession::~CheckSession() {
  st::stSetDialogs(st::StDialogs{});
}

DrawingReport CheckSession::check(const std::filesystem::path& drawing) {
  DrawingReport report;
  report.path = drawing.string();
  try {
    return checkOpen(drawing, report);
  } catch (const OdError& e) {
    report.error = e.description().toUtf8();
  } catch (const std::exception& e) {
    report.error = e.what();
  }
  return report;
}

DrawingReport CheckSession::checkOpen(const std::filesystem::path& drawing, DrawingReport& report) {
  std::filesystem::path absolute = std::filesystem::absolute(drawing);
  OdArray<OdString> standards;
  for (const std::string& s : options_.standards)
    standards.push_back(OdString::fromUtf8(std::filesystem::absolute(s).string()));

  HostDocument* doc = module_->host().openDrawing(absolute);
  Finally close([&] { module_->host().app().documents().closeDocument(doc, true); });
  OdDbDatabase* db = doc->database();
  st::StManagerCache* cache = st::stManagerCache();
  if (!cache) throw OdError(eNotInitializedYet, "the standards module has no manager cache");

  // Standards named for this run stand in for the drawing's own list, which stays as it is;
  // so drawings that cannot hold a list (release 12 and older) are checked too.
  if (!standards.empty() && !cache->hasManager(db)) cache->attachDatabase(db);
  auto* manager = dynamic_cast<st::StManagerImpl*>(cache->getManager(db));
  if (!manager) {
    report.error =
        "no standards files are associated with the drawing: name them with --standard, or "
        "associate them with 'stcheck standards DRAWING --add FILE'";
    return report;
  }
  if (!standards.empty()) manager->setRunStandardsFiles(standards);
  std::error_code ec;
  for (const OdString& file : manager->standardsFilesFound()) {
    report.standards.push_back(file.toUtf8());
    if (!std::filesystem::is_regular_file(std::filesystem::path(file.toUtf8()), ec))
      report.missingStandards.push_back(file.toUtf8());
  }
  if (report.standards.empty()) {
    report.error =
        "the drawing's list of standards files is empty: add one with 'stcheck "
        "standards DRAWING --add FILE', or name them with --standard";
    return report;
  }
  if (!report.missingStandards.empty()) {
    report.error = "standards file not found: " + report.missingStandards.front();
    return report;
  }
  for (st::StEnumDWSPluginPtr it = manager->getPlugins(); it->current(); it->next()) {
    st::StDWSPluginPtr plugin = it->current();
    report.plugins.push_back({plugin->isA()->name().toUtf8(), plugin->name().toUtf8()});
  }
  if (report.plugins.empty()) {
    report.error = "no standards plug-in is in use (see 'stcheck plugins'), so nothing was checked";
    return report;
  }

  CountListener counts;
  manager->addReactor(&counts);
  g_problems = &report.problems;
  {
    Finally detach([&] {
      g_problems = nullptr;
      manager->removeReactor(&counts);
    });
    stCheckStandards();
  }
  if (counts.standardsUnusable) {
    // A file that was there but is no drawing stopped the check before any plug-in ran.
    for (const std::string& file : report.standards) {
      std::string reason = unreadableReason(file);
      if (reason.empty()) continue;
      // The reader's messages start with the file they are about, which is named here already.
      if (reason.rfind(file + ": ", 0) == 0) reason.erase(0, file.size() + 2);
      report.error = "cannot read standards file " + file + ": " + reason;
      report.problems.clear();
      return report;
    }
    report.error = "the standards files could not be read";
    return report;
  }
  // In a silent check the manager counts only what it fixed; the rest is counted here from
  // what it handed over.
  report.counts = counts.counts;
  report.counts.found = static_cast<std::uint32_t>(report.problems.size());
  report.counts.ignored = 0;
  for (const ReportProblem& p : report.problems) report.counts.ignored += p.ignored() && !p.fixed;

  bool fixedSome = false;
  for (const ReportProblem& p : report.problems) fixedSome |= p.fixed;
  if (options_.fix && fixedSome) {
    std::filesystem::path bak = backupPath(absolute);
    std::filesystem::copy_file(absolute, bak, std::filesystem::copy_options::overwrite_existing,
                               ec);
    if (ec) {
      report.error = "cannot keep the original as " + bak.string() + ": " + ec.message() +
                     "; the drawing was not written";
      return report;
    }
    module_->host().app().documents().saveDocument(doc);
    report.backup = backupPath(drawing).string();
  }
  return report;
}

}  // namespace stcheck
