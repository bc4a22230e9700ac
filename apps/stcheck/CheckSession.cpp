#include "CheckSession.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>

#include <cstdlib>
#include <system_error>

#include "BackupName.h"
#include "DrawingLock.h"

#include "HeadlessHost.h"
#include "HostConfigTree.h"
#include "ModuleHost.h"
#include "OdAtomicFile.h"
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
#include "StStandardsPaths.h"

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

// Why --fix may not write the drawing, decided before anything is changed, so that the check
// still reports every problem; empty when it may. An editor refuses what is refused here.
std::string whyNotWritable(const std::filesystem::path& drawing) {
  std::optional<OdFileStamp> stamp = OdFileStamp::of(drawing);
  if (!stamp) return std::string();  // the reader says what is wrong
  std::error_code ec;
  if (stamp->isLink())
    return "it is a symbolic link to " + std::filesystem::read_symlink(drawing, ec).string() +
           ": fix the file it leads to";
  if (!stamp->isRegularFile()) return std::string();
  if (std::string refusal = OdAtomicFile::whyNotReplaceable(drawing); !refusal.empty())
    return refusal;
  const std::filesystem::path folder = drawing.parent_path();
  if (::access(folder.c_str(), W_OK | X_OK) != 0) {
    const int error = errno;
    return "its folder " + folder.string() + " is not writable (" + std::strerror(error) + ")";
  }
  if (::geteuid() != 0) {
    // A rewritten drawing is a new file, which only the superuser can give to another user or
    // put in a group the writer is not in.
    if (stamp->owner != ::geteuid())
      return "it belongs to another user (" + std::to_string(stamp->owner) +
             "), who would lose it to you";
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(0, ::getgroups(0, nullptr))));
    groups.resize(static_cast<std::size_t>(
        std::max(0, ::getgroups(static_cast<int>(groups.size()), groups.data()))));
    if (stamp->group != ::getegid() &&
        std::find(groups.begin(), groups.end(), stamp->group) == groups.end())
      return "its group " + std::to_string(stamp->group) + " is not one of yours";
  }
  return std::string();
}

// After a write that failed, nothing the check fixed in memory reached the drawing: the
// problems stand as found.
void forgetFixes(DrawingReport& report) {
  for (ReportProblem& p : report.problems) {
    p.fixed = false;
    p.fixedWith.clear();
    p.renamedTo.clear();
  }
  report.counts.fixedAutomatically = 0;
}

}  // namespace

CheckSession::CheckSession(const CheckOptions& options)
    : options_(options), module_(std::make_unique<ModuleHost>(ModuleHost::Config::kPrivateCopy)) {
  HostConfigTree::Batch batch(module_->host().app().configTree());
  st::StSettingsStorage* settings = ::stSettingsStorage();
  settings->setAutoFixProperties(options_.fix);
  // Problems marked ignored always come over, to be counted; --show-ignored decides whether
  // they are listed.
  settings->setShowIgnoredProblems(true);
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

  // A drawing to fix is locked before it is read and stays locked until it is written.
  std::string notWritable = options_.fix ? whyNotWritable(absolute) : std::string();
  std::optional<DrawingLock> lock;
  if (options_.fix && notWritable.empty()) {
    lock.emplace(absolute);
    if (swept_.insert(absolute.parent_path()).second)
      OdAtomicFile::removeStale(absolute.parent_path());
  }

  HostDocument* doc = module_->host().openDrawing(absolute);
  Finally close([&] { module_->host().app().documents().closeDocument(doc, true); });
  if (lock && !lock->unchanged())
    throw OdError(eFileAccessError,
                  drawing.string() + ": changed on disk while it was read; check it again");
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
  const OdArray<OdString> stored = standards.empty() ? manager->getStandardsFiles(db) : standards;
  const OdArray<OdString> found = manager->standardsFilesFound();
  for (unsigned i = 0; i < found.size(); ++i) {
    const OdString& file = found[i];
    report.standards.push_back(file.toUtf8());
    if (std::filesystem::is_regular_file(std::filesystem::path(file.toUtf8()), ec)) continue;
    report.missingStandards.push_back(file.toUtf8());
    if (!report.error.empty()) continue;
    // Say every place it was looked for, so that the user knows where to put it.
    std::string places;
    if (i < stored.size())
      for (const OdString& place : st::StStandardsPaths::placesLooked(stored[i], db))
        places += (places.empty() ? "" : ", ") + place.toUtf8();
    report.error =
        "standards file not found: " + (i < stored.size() ? stored[i].toUtf8() : file.toUtf8()) +
        (places.empty() ? std::string() : " (looked for " + places + ")");
  }
  if (report.standards.empty()) {
    report.error =
        "the drawing's list of standards files is empty: add one with 'stcheck "
        "standards DRAWING --add FILE', or name them with --standard";
    return report;
  }
  if (!report.error.empty()) return report;
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
  const bool fixing = options_.fix && notWritable.empty();
  st::StSettingsStorage* settings = ::stSettingsStorage();
  if (fixing != options_.fix) settings->setAutoFixProperties(fixing);
  {
    Finally detach([&] {
      g_problems = nullptr;
      manager->removeReactor(&counts);
      if (fixing != options_.fix) settings->setAutoFixProperties(options_.fix);
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
  // what it handed over, and problems marked ignored are listed only when asked for.
  report.counts = counts.counts;
  report.counts.ignored = 0;
  report.counts.found = static_cast<std::uint32_t>(report.problems.size());
  std::vector<ReportProblem> listed;
  for (ReportProblem& p : report.problems) {
    if (p.ignored() && !p.fixed) ++report.counts.ignored;
    if (!p.ignored() || p.fixed || options_.showIgnored) listed.push_back(std::move(p));
  }
  report.problems = std::move(listed);

  if (!notWritable.empty()) {
    if (report.remaining() > 0) report.notFixed = notWritable;
    return report;
  }
  bool fixedSome = false;
  for (const ReportProblem& p : report.problems) fixedSome |= p.fixed;
  if (fixing && fixedSome) {
    try {
      const std::filesystem::path backup = writeFixed(*doc, *lock, absolute);
      report.backup = (drawing.parent_path() / backup.filename()).string();
    } catch (const OdError& e) {
      forgetFixes(report);
      report.notFixed = e.description().toUtf8();
    }
  }
  return report;
}

std::filesystem::path CheckSession::writeFixed(HostDocument& doc, const DrawingLock& lock,
                                               const std::filesystem::path& drawing) {
  // The original is kept from the bytes that were checked, not from the file as it is now;
  // it is put in place only when the fixed drawing is complete and about to replace the
  // original, so a failure or a kill on the way leaves both files as they were.
  OdAtomicFile::Options keep;
  keep.attributes = lock.stamp();
  const std::filesystem::path backupPath = BackupName::of(drawing);
  OdAtomicFile backup(backupPath, keep);
  backup.write(doc.database()->originalBytes());
  backup.prepare();
  OdAtomicFile::Options replace;
  replace.expected = lock.stamp();
  replace.attributes = lock.stamp();
  replace.beforeRename = [&] { backup.commit(); };
  module_->host().app().documents().saveDocument(&doc, OdString(), replace);
  return backupPath;
}

}  // namespace stcheck
