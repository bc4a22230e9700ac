#include "HostBuiltinCommands.h"

#include <cwchar>

#include "HostApplication.h"
#include "HostCloseQuestion.h"
#include "HostCommandRegistry.h"
#include "HostEditCommands.h"
#include "HostFileCommands.h"
#include "HostImportCommand.h"
#include "HostSysVars.h"
#include "OdError.h"

namespace {

HostApplication& app() {
  return HostApplication::running();
}

class OpenCommand : public UICmdProcess {
 public:
  bool execute() override {
    OdString path;
    if (!app().getString(L"Drawing to open: ", path)) return false;
    try {
      app().documents().openDocument(path);
    } catch (const OdError& e) {
      app().cmdPrintf(L"cannot open %ls: %ls\n", path.c_str(), e.description().c_str());
      return false;
    }
    return true;
  }
};

class CloseCommand : public UICmdProcess {
 public:
  bool execute() override {
    HostDocument* doc = app().documents().curDocument();
    if (!doc) {
      app().cmdPrint(L"no document is open\n");
      return false;
    }
    if (!hostConfirmClose(doc)) {
      app().cmdPrintf(L"%ls was kept open\n", doc->title().c_str());
      return false;
    }
    if (app().documents().closeDocument(doc)) return true;
    app().cmdPrintf(L"%ls was not closed\n", doc->title().c_str());
    return false;
  }
};

class SetVarCommand : public UICmdProcess {
 public:
  bool execute() override {
    OdString name;
    OdString text;
    if (!app().getString(L"Variable name: ", name)) return false;
    const HostSysVars::Definition* def = HostSysVars::find(name);
    if (!def) {
      app().cmdPrintf(L"unknown system variable %ls\n", name.c_str());
      return false;
    }
    if (!app().getString(L"New value: ", text)) return false;
    OdResBufPtr value;
    if (def->type == kHostRtString) {
      value = OdResBuf::newRb(def->type, text);
    } else {
      wchar_t* end = nullptr;
      long n = std::wcstol(text.c_str(), &end, 10);
      if (text.isEmpty() || *end != L'\0') {
        app().cmdPrintf(L"value \"%ls\" of %ls is not a whole number\n", text.c_str(),
                        name.c_str());
        return false;
      }
      value = OdResBuf::newRb(def->type, static_cast<int>(n));
    }
    OdString error;
    if (app().documents().setSysVar(app().documents().curDocument(), name, value.get(), &error) ==
        eOk)
      return true;
    app().cmdPrintf(L"%ls\n", error.c_str());
    return false;
  }
};

class HelpCommand : public UICmdProcess {
 public:
  bool execute() override {
    OdString topic;
    if (!app().getString(L"Help topic: ", topic)) return false;
    return app().showHelp(topic);
  }
};

}  // namespace

void registerHostBuiltins(HostCommandRegistry& registry) {
  const OdString group(L"HOSTCORE");
  registry.add(L"OPEN", group, kHostCmdModal, &createCommand<OpenCommand>);
  registry.add(L"CLOSE", group, kHostCmdModal, &createCommand<CloseCommand>);
  registry.add(L"SETVAR", group, kHostCmdTransparent, &createCommand<SetVarCommand>);
  registry.add(L"HELP", group, kHostCmdTransparent, &createCommand<HelpCommand>);
  registerHostFileCommands(registry);
  registerHostEditCommands(registry);
  registerHostImportCommand(registry);
}
