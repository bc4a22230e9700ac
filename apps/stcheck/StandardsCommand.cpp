#include "StandardsCommand.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "DrawingLock.h"
#include "FileKind.h"
#include "HeadlessHost.h"
#include "ModuleHost.h"
#include "OdAtomicFile.h"
#include "OdDbDatabase.h"
#include "OdError.h"
#include "OdResBuf.h"
#include "StDbReaderWriter.h"
#include "StStandardsPaths.h"
#include "TerminalText.h"

namespace stcheck {

namespace {

struct StandardsOptions {
  std::string drawing;
  std::vector<std::string> add;
  std::vector<std::string> remove;
  bool clear = false;
};

namespace fs = std::filesystem;

// The path to store for a standards file named on the command line.
std::string storedPath(const std::string& given, const fs::path& drawingDir) {
  fs::path path(given);
  if (path.is_absolute()) return path.lexically_normal().string();
  return fs::absolute(path).lexically_normal().lexically_relative(drawingDir).string();
}

// Where a stored path points, read from the drawing's folder.
fs::path resolved(const std::string& stored, const fs::path& drawingDir) {
  fs::path path(stored);
  return (path.is_absolute() ? path : drawingDir / path).lexically_normal();
}

// Why `db` took no standards list: drawings before release 13 have no dictionaries to keep
// one in, and a later drawing written without its objects section has none either.
std::string whyNoList(OdDbDatabase& db, const std::string& drawing) {
  OdResBufPtr version = db.getHeaderVariable(L"$ACADVER");
  std::string name = version.isNull() ? std::string("no $ACADVER") : version->getString().toUtf8();
  if (db.versionNumber() < 1012)
    return drawing + " is a drawing of release 12 or older (" + name +
           "), which cannot store a list of standards files; check it with 'stcheck check " +
           drawing + " --standard FILE' instead";
  return "cannot store the list of standards files in " + drawing +
         ": the drawing has no named-object dictionary (it was written without an OBJECTS "
         "section); check it with 'stcheck check " +
         drawing + " --standard FILE' instead";
}

int runStandards(const StandardsOptions& options) {
  fs::path drawing = fs::absolute(options.drawing);
  fs::path dir = drawing.parent_path();
  for (const std::string& file : options.add) {
    if (std::string problem = standardsFileProblem(file); !problem.empty()) {
      std::fprintf(stderr, "stcheck: %s\n", terminalSafe(problem).c_str());
      return 2;
    }
    // A standards file is a drawing; anything else would make every object non-standard.
    try {
      OdDbDatabase::readFile(file);
    } catch (const OdError& e) {
      std::fprintf(stderr, "stcheck: %s is not a standards drawing: %s\n",
                   terminalSafe(file).c_str(), terminalSafe(e.description().toUtf8()).c_str());
      return 2;
    }
  }
  try {
    ModuleHost module(ModuleHost::Config::kPrivateCopy);
    // A change is written back: the drawing is held from reading to writing, as --fix does.
    std::optional<DrawingLock> lock;
    if (options.clear || !options.add.empty() || !options.remove.empty()) lock.emplace(drawing);
    HostDocument* doc = module.host().openDrawing(drawing);
    st::StDbReaderWriterPtr association = st::StDbReaderWriter::createObject();
    association->setDatabase(doc->database());
    OdArray<OdString> stored;
    association->readStandardFiles(stored);
    std::vector<std::string> files;
    for (const OdString& s : stored) files.push_back(s.toUtf8());

    bool changed = false;
    if (options.clear && !files.empty()) {
      files.clear();
      changed = true;
    }
    for (const std::string& gone : options.remove) {
      fs::path target = resolved(storedPath(gone, dir), dir);
      auto it = std::find_if(files.begin(), files.end(), [&](const std::string& f) {
        return f == gone || resolved(f, dir) == target;
      });
      if (it == files.end()) {
        std::fprintf(stderr, "stcheck: %s is not associated with %s\n", terminalSafe(gone).c_str(),
                     terminalSafe(options.drawing).c_str());
        return 2;
      }
      files.erase(it);
      changed = true;
    }
    for (const std::string& added : options.add) {
      std::string path = storedPath(added, dir);
      bool present = std::any_of(files.begin(), files.end(), [&](const std::string& f) {
        return resolved(f, dir) == resolved(path, dir);
      });
      if (present) continue;
      files.push_back(path);
      changed = true;
    }
    if (changed) {
      OdArray<OdString> list;
      for (const std::string& f : files) list.push_back(OdString::fromUtf8(f));
      if (!association->writeStandardFiles(list))
        throw OdError(eInvalidInput, whyNoList(*doc->database(), options.drawing));
      OdAtomicFile::Options unchanged;
      unchanged.expected = lock->stamp();
      module.host().app().documents().saveDocument(doc, OdString(), unchanged);
    }
    for (const std::string& f : files) {
      const OdString found = st::StStandardsPaths::resolve(OdString::fromUtf8(f), doc->database());
      bool exists = fs::is_regular_file(found.toUtf8());
      std::printf("%s%s\n", f.c_str(), exists ? "" : "  (not found)");
    }
    if (files.empty())
      std::printf("no standards files are associated with %s\n", options.drawing.c_str());
    return 0;
  } catch (const OdError& e) {
    std::fprintf(stderr, "stcheck: %s\n", terminalSafe(e.description().toUtf8()).c_str());
    return 2;
  }
}

}  // namespace

void StandardsCommand::add(CLI::App& app, int& exitCode) {
  auto options = std::make_shared<StandardsOptions>();
  CLI::App* cmd = app.add_subcommand(
      "standards", "List or change the standards files associated with a drawing");
  cmd->add_option("DRAWING", options->drawing, "The drawing")->required();
  cmd->add_option("--add", options->add, "Associate a standards file (.dws); repeat for several");
  cmd->add_option("--remove", options->remove, "Remove a standards file from the association");
  cmd->add_flag("--clear", options->clear, "Remove every standards file from the association");
  cmd->callback([options, &exitCode] { exitCode = runStandards(*options); });
}

}  // namespace stcheck
