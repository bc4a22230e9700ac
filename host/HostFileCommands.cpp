#include "HostFileCommands.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "HostApplication.h"
#include "HostCommandRegistry.h"
#include "HostDocumentSave.h"
#include "HostFrontend.h"
#include "HostSilentCheck.h"
#include "OdDbDatabase.h"
#include "OdError.h"

namespace {

namespace fs = std::filesystem;

HostApplication& app() {
  return HostApplication::running();
}

fs::path toPath(const OdString& text) {
  return fs::path(text.toUtf8());
}

OdString fromPath(const fs::path& path) {
  return OdString::fromUtf8(path.string());
}

// What a loaded module says about the standards files of a drawing, found by name like the
// silent check (HostSilentCheck.h), so the host builds against no module and keeps no
// knowledge of how a module stores its list:
//   bool stFindStandardsFiles(OdDbDatabase*, OdArray<OdString>*)         the files, as found
//   bool stWriteStandardsFiles(OdDbDatabase*, const OdArray<OdString>*)  a new list
using FindStandards = bool (*)(OdDbDatabase*, OdArray<OdString>*);
using WriteStandards = bool (*)(OdDbDatabase*, const OdArray<OdString>*);

std::vector<OdString> associatedStandards(OdDbDatabase* db) {
  OdArray<OdString> files;
  if (auto find = hostModuleFunction<FindStandards>("stFindStandardsFiles")) find(db, &files);
  return std::vector<OdString>(files.begin(), files.end());
}

// The drawing as it goes into the package: naming the standards files packed beside it by
// their bare names, so that the package finds them wherever it is unpacked. `packedNames[i]`
// is the name in the package of `found[i]`, empty for a file left out, which keeps the full
// path it was found at. The drawing that is open stays as it is.
std::string packedDrawing(HostDocument& doc, const std::vector<OdString>& found,
                          const std::vector<OdString>& packedNames) {
  std::string bytes = doc.database()->writeBuffer();
  auto write = hostModuleFunction<WriteStandards>("stWriteStandardsFiles");
  if (found.empty() || !write) return bytes;
  OdDbDatabasePtr copy = OdDbDatabase::readBuffer(bytes, doc.database()->getFilename().toUtf8());
  OdArray<OdString> list;
  for (std::size_t i = 0; i < found.size(); ++i)
    list.push_back(packedNames[i].isEmpty() ? found[i] : packedNames[i]);
  if (!write(copy.get(), &list)) return bytes;
  return copy->writeBuffer();
}

// Writes `bytes` to `target` through a temporary file beside it, so that a failed write
// leaves no half-written file. Throws OdError(eFileWriteError) naming the file.
void writeWhole(const fs::path& target, const std::string& bytes) {
  fs::path temp = target;
  temp += ".tmp" + std::to_string(::getpid());
  {
    std::ofstream out(temp, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) {
      std::error_code ec;
      fs::remove(temp, ec);
      throw OdError(eFileWriteError, "cannot write " + target.string());
    }
  }
  std::error_code ec;
  fs::rename(temp, target, ec);
  if (ec) {
    fs::remove(temp, ec);
    throw OdError(eFileWriteError, "cannot write " + target.string() + ": " + ec.message());
  }
}

// Copies `source` to `target` as writeWhole writes (a link at `target` is replaced, not
// followed); the reason when it fails, else an empty text.
OdString copyWhole(const fs::path& source, const fs::path& target) {
  std::ifstream in(source, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (!in && !in.eof()) return L"cannot read it";
  try {
    writeWhole(target, bytes);
  } catch (const OdError& e) {
    return e.description();
  }
  return OdString();
}

class SaveCommand : public UICmdProcess {
 public:
  bool execute() override {
    HostDocument* doc = app().commandDocument(L"SAVE");
    if (!doc) return false;
    // A new drawing is named first, as SAVEAS names it, before the check looks at it.
    OdString path;
    if (doc->isUntitled() && !app().getString(L"Save drawing as: ", path)) return false;
    hostRunSilentCheck(kHostCheckSave);
    return hostSaveDocument(app().documents().curDocument(), path);
  }
};

class SaveAsCommand : public UICmdProcess {
 public:
  bool execute() override {
    HostDocument* doc = app().commandDocument(L"SAVEAS");
    if (!doc) return false;
    OdString path;
    if (!app().getString(L"Save drawing as [Binary/ASCII] or file name: ", path)) return false;
    std::optional<bool> binary;
    if (path.iCompare(OdString(L"BINARY")) == 0 || path.iCompare(OdString(L"ASCII")) == 0) {
      binary = path.iCompare(OdString(L"BINARY")) == 0;
      if (!app().getString(L"Save drawing as: ", path)) return false;
    }
    hostRunSilentCheck(kHostCheckSaveAs);
    return hostSaveDocument(app().documents().curDocument(), path, binary, L"SAVEAS");
  }
};

class TransmitCommand : public UICmdProcess {
 public:
  bool execute() override {
    HostDocument* doc = app().commandDocument(L"TRANSMIT");
    if (!doc) return false;
    OdString folderText;
    if (!app().getString(L"Folder of the package: ", folderText)) return false;
    hostRunSilentCheck(kHostCheckTransmit);
    // The check may have closed the drawing (a dialog's command); take it again.
    doc = app().commandDocument(L"TRANSMIT");
    if (!doc) return false;

    const fs::path folder = toPath(folderText);
    std::error_code ec;
    fs::create_directories(folder, ec);
    if (ec || !fs::is_directory(folder)) {
      app().cmdPrintf(L"TRANSMIT: cannot make the folder %ls\n", folderText.c_str());
      return false;
    }
    bool complete = true;
    std::set<fs::path> taken;
    const fs::path drawingName = toPath(doc->title());
    taken.insert(drawingName);
    const std::vector<OdString> found = associatedStandards(doc->database());
    std::vector<OdString> packedNames(found.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
      const OdString& standard = found[i];
      const fs::path source = toPath(standard);
      const fs::path name = source.filename();
      if (!fs::is_regular_file(source, ec)) {
        app().cmdPrintf(L"TRANSMIT: standards file %ls is missing and is not in the package\n",
                        standard.c_str());
        complete = false;
      } else if (!taken.insert(name).second) {
        app().cmdPrintf(
            L"TRANSMIT: standards file %ls has the name of another file of the package and "
            L"is not in it\n",
            standard.c_str());
        complete = false;
      } else if (const OdString failure = copyWhole(source, folder / name); !failure.isEmpty()) {
        app().cmdPrintf(L"TRANSMIT: cannot copy standards file %ls: %ls\n", standard.c_str(),
                        failure.c_str());
        taken.erase(name);
        complete = false;
      } else {
        packedNames[i] = fromPath(name);
      }
    }
    try {
      writeWhole(folder / drawingName, packedDrawing(*doc, found, packedNames));
    } catch (const OdError& e) {
      app().cmdPrintf(L"TRANSMIT: %ls\n", e.description().c_str());
      return false;
    }
    app().cmdPrintf(L"TRANSMIT: %d file(s) in %ls\n", int(taken.size()), fromPath(folder).c_str());
    return complete;
  }
};

class PlotCommand : public UICmdProcess {
 public:
  bool execute() override {
    if (!app().commandDocument(L"PLOT")) return false;
    OdString path;
    if (!app().getString(L"PDF file to plot to: ", path)) return false;
    hostRunSilentCheck(kHostCheckPlot);
    // The check may have closed the drawing (a dialog's command); take it again.
    HostDocument* doc = app().commandDocument(L"PLOT");
    if (!doc) return false;
    OdString error;
    if (!app().front().plotToPdf(*doc->database(), path, error)) {
      app().cmdPrintf(L"PLOT: cannot plot: %ls\n", error.c_str());
      return false;
    }
    app().cmdPrintf(L"PLOT: wrote %ls\n", path.c_str());
    return true;
  }
};

}  // namespace

void registerHostFileCommands(HostCommandRegistry& registry) {
  const OdString group(L"HOSTCORE");
  registry.add(L"SAVE", group, kHostCmdModal, &createCommand<SaveCommand>);
  registry.add(L"SAVEAS", group, kHostCmdModal, &createCommand<SaveAsCommand>);
  registry.add(L"TRANSMIT", group, kHostCmdModal, &createCommand<TransmitCommand>);
  registry.add(L"PLOT", group, kHostCmdModal, &createCommand<PlotCommand>);
}
