#include "HostFileCommands.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "HostApplication.h"
#include "HostCommandRegistry.h"
#include "HostSilentCheck.h"
#include "OdDbDictionary.h"
#include "OdDbXrecord.h"
#include "OdError.h"

namespace {

namespace fs = std::filesystem;

HostApplication& app() {
  return HostApplication::running();
}

// The current document, or null after saying that none is open.
HostDocument* currentDocument(const wchar_t* command) {
  HostDocument* doc = app().documents().curDocument();
  if (!doc) app().cmdPrintf(L"%ls: no document is open\n", command);
  return doc;
}

fs::path toPath(const OdString& text) {
  return fs::path(text.toUtf8());
}

OdString fromPath(const fs::path& path) {
  return OdString::fromUtf8(path.string());
}

// The standards files associated with the drawing: the dictionary "AcStStandard" of the
// named-object dictionary holds one xrecord per file under the keys "0", "1", ..., the path
// in its first buffer (group code 1). Anything else on the way is passed over: a package
// simply carries no standards file it cannot name.
std::vector<OdString> associatedStandards(OdDbDatabase* db) {
  std::vector<OdString> files;
  OdDbObjectId nodId = db->getNamedObjectsDictionaryId();
  if (nodId.isNull()) return files;
  OdDbDictionaryPtr nod = OdDbDictionary::cast(nodId.openObject().get());
  if (!nod) return files;
  OdDbDictionaryPtr list = OdDbDictionary::cast(nod->getAt(L"AcStStandard").openObject().get());
  if (!list) return files;
  for (std::uint32_t i = 0; i < list->numEntries(); ++i) {
    OdDbObjectId entry = list->getAt(OdString::format(L"%d", int(i)));
    OdDbXrecordPtr record = OdDbXrecord::cast(entry.openObject().get());
    if (!record) continue;
    OdResBufPtr chain = record->rbChain();
    if (chain && chain->restype() == 1) files.push_back(chain->getString());
  }
  return files;
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

class SaveCommand : public UICmdProcess {
 public:
  bool execute() override {
    HostDocument* doc = currentDocument(L"SAVE");
    if (!doc) return false;
    hostRunSilentCheck(kHostCheckSave);
    return save(doc, OdString());
  }

 protected:
  static bool save(HostDocument* doc, const OdString& path) {
    try {
      app().documents().saveDocument(doc, path);
    } catch (const OdError& e) {
      app().cmdPrintf(L"cannot save %ls: %ls\n", doc->title().c_str(), e.description().c_str());
      return false;
    }
    return true;
  }
};

class SaveAsCommand : public SaveCommand {
 public:
  bool execute() override {
    HostDocument* doc = currentDocument(L"SAVEAS");
    if (!doc) return false;
    OdString path;
    if (!app().getString(L"Save drawing as: ", path)) return false;
    hostRunSilentCheck(kHostCheckSaveAs);
    return save(doc, path);
  }
};

class TransmitCommand : public UICmdProcess {
 public:
  bool execute() override {
    HostDocument* doc = currentDocument(L"TRANSMIT");
    if (!doc) return false;
    OdString folderText;
    if (!app().getString(L"Folder of the package: ", folderText)) return false;
    hostRunSilentCheck(kHostCheckTransmit);
    // The check may have closed the drawing (a dialog's command); take it again.
    doc = currentDocument(L"TRANSMIT");
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
    try {
      writeWhole(folder / drawingName, doc->database()->writeBuffer());
    } catch (const OdError& e) {
      app().cmdPrintf(L"TRANSMIT: %ls\n", e.description().c_str());
      return false;
    }
    taken.insert(drawingName);
    for (const OdString& standard : associatedStandards(doc->database())) {
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
      } else if (!fs::copy_file(source, folder / name, fs::copy_options::overwrite_existing, ec)) {
        app().cmdPrintf(L"TRANSMIT: cannot copy standards file %ls: %s\n", standard.c_str(),
                        ec.message().c_str());
        complete = false;
      }
    }
    app().cmdPrintf(L"TRANSMIT: %d file(s) in %ls\n", int(taken.size()), fromPath(folder).c_str());
    return complete;
  }
};

class ImportCommand : public UICmdProcess {
 public:
  bool execute() override {
    if (!currentDocument(L"IMPORT")) return false;
    hostRunSilentCheck(kHostCheckImport);
    app().cmdPrint(L"IMPORT: this host imports no other file formats\n");
    return false;
  }
};

class PlotCommand : public UICmdProcess {
 public:
  bool execute() override {
    if (!currentDocument(L"PLOT")) return false;
    hostRunSilentCheck(kHostCheckPlot);
    app().cmdPrint(L"PLOT: this host has no plotter\n");
    return false;
  }
};

}  // namespace

void registerHostFileCommands(HostCommandRegistry& registry) {
  const OdString group(L"HOSTCORE");
  registry.add(L"SAVE", group, kHostCmdModal, &createCommand<SaveCommand>);
  registry.add(L"SAVEAS", group, kHostCmdModal, &createCommand<SaveAsCommand>);
  registry.add(L"TRANSMIT", group, kHostCmdModal, &createCommand<TransmitCommand>);
  registry.add(L"IMPORT", group, kHostCmdModal, &createCommand<ImportCommand>);
  registry.add(L"PLOT", group, kHostCmdModal, &createCommand<PlotCommand>);
}
