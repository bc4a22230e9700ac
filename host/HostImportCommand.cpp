#include "HostImportCommand.h"

#include <filesystem>

#include "HostApplication.h"
#include "HostCommandRegistry.h"
#include "HostSilentCheck.h"
#include "OdDbDatabase.h"
#include "OdError.h"

namespace {

HostApplication& app() {
  return HostApplication::running();
}

// Why `path` could not be imported, on one line (a reader's reason may quote a file's lines)
// and without the path when the reason starts with it, as the reader's do.
OdString reasonFor(const OdString& path, const OdError& e) {
  OdString text = e.description();
  text.replace(L"\r\n", L" ");
  text.replace(L"\n", L" ");
  text.replace(L"\r", L" ");
  const OdString named = path + OdString(L": ");
  if (text.left(named.getLength()) == named) text = text.mid(named.getLength());
  return text;
}

class ImportCommand : public UICmdProcess {
 public:
  bool execute() override {
    if (!app().commandDocument(L"IMPORT")) return false;
    OdString path;
    if (!app().getString(L"Drawing to import: ", path)) return false;
    hostRunSilentCheck(kHostCheckImport);
    // The check may have closed the drawing (a dialog's command); take it again.
    HostDocument* doc = app().commandDocument(L"IMPORT");
    if (!doc) return false;

    const std::filesystem::path file(path.toUtf8());
    OdDbDatabasePtr source;
    try {
      source = OdDbDatabase::readFile(file);
    } catch (const OdError& e) {
      app().cmdPrintf(L"IMPORT: cannot read %ls: %ls\n", path.c_str(), reasonFor(path, e).c_str());
      return false;
    }
    OdDbDatabase::InsertResult result;
    try {
      result = doc->database()->insert(OdString::fromUtf8(file.stem().string()), *source);
    } catch (const OdError& e) {
      app().cmdPrintf(L"IMPORT: cannot insert %ls: %ls\n", path.c_str(),
                      reasonFor(path, e).c_str());
      return false;
    }
    app().cmdPrintf(L"IMPORT: %ls inserted as block %ls (%d entities)\n",
                    OdString::fromUtf8(file.filename().string()).c_str(), result.blockName.c_str(),
                    int(result.entities));
    return true;
  }
};

}  // namespace

void registerHostImportCommand(HostCommandRegistry& registry) {
  registry.add(L"IMPORT", OdString(L"HOSTCORE"), kHostCmdModal, &createCommand<ImportCommand>);
}
