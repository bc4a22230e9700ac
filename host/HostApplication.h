#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "HostApDocManager.h"
#include "HostApp.h"
#include "HostCommandLine.h"
#include "HostCommandRegistry.h"
#include "HostConfigKey.h"
#include "HostHelp.h"
#include "HostServices.h"
#include "HostTranslation.h"
#include "OdRxModule.h"

class HostConfigTree;
class HostFrontend;
class HostStatusBar;

// The host application: configuration tree, documents, commands and command line, system
// variables, messages, translation and help, put together behind HostServices and the
// entry points of HostEntryPoints.h. A front (HostFrontend: the headless front, a window
// system) presents what it asks.
//
// One host application runs at a time in a process, on one thread: constructing a second
// while one runs throws OdError(eAlreadyRegistered). Shutting down closes every document
// (reactors see them close), then unloads the modules it loaded, last first, and finally
// stops answering the entry points.
//
// Built-in commands (group "HOSTCORE"), for scripts:
//   OPEN file      opens a drawing and makes it current
//   CLOSE          closes the current document, asking first whether to save its changes
//                  (HostCloseQuestion.h)
//   SETVAR name value   sets a system variable of the current document
//   HELP topic     shows a help page
//   SAVE, SAVEAS file, TRANSMIT folder, PLOT file           see HostFileCommands.h
//   IMPORT file                                             see HostImportCommand.h
//   -LAYER, SELECT, CHANGE, NEW, ZOOM                       see HostEditCommands.h
class HostApplication : public HostServices {
 public:
  struct Options {
    // The configuration file; empty for HostConfigTree::defaultPath().
    std::filesystem::path configFile;
    // Read the file but never write it: changes last for this run (HostConfigTree::openDetached).
    bool detachedConfig = false;
  };

  // `front` must outlive the application.
  explicit HostApplication(HostFrontend& front);
  HostApplication(HostFrontend& front, Options options);
  ~HostApplication() override;
  HostApplication(const HostApplication&) = delete;
  HostApplication& operator=(const HostApplication&) = delete;

  // The running host application, or null.
  static HostApplication* current() noexcept;
  // The running host application; throws OdError(eNotInitializedYet) when none runs, for
  // code such as a command that only runs inside a host.
  static HostApplication& running();

  HostFrontend& front() noexcept { return front_; }
  HostConfigTree& configTree() noexcept { return *config_; }
  // The root key of the configuration tree.
  HostConfigKeyPtr configRoot();
  HostCommandRegistry& commands() noexcept { return commands_; }
  HostCommandLine& commandLine() noexcept { return commandLine_; }
  HostApDocManager& documents() noexcept { return documents_; }
  HostTranslation& translation() noexcept { return translation_; }
  HostHelp& help() noexcept { return help_; }
  // The status bar modules may place widgets in; null when the front has none (a host without
  // a screen). Not owned.
  HostStatusBar* statusBar();
  // The current document for a command that works on one; null, after the line "COMMAND: no
  // document is open" on the command line, when none is open.
  HostDocument* commandDocument(const wchar_t* command);
  // The object GetApp() hands out (without a reference added).
  HostApp* appObject() noexcept { return appObject_.get(); }

  // Loads a module through the kernel's dynamic linker (see OdRxDynamicLinker for where it
  // is looked for) and remembers it, to unload it at shutdown. Throws OdError when it does
  // not load.
  OdRxModulePtr loadModule(const OdString& name);
  // Loads a module that a configuration names: from the module search path only (see
  // OdRxDynamicLinker::loadFromSearchPath), remembered like loadModule's. Null, with `reason`
  // set to the loader's one line, when it does not load; what the module's initApp throws
  // reaches the caller.
  OdRxModulePtr loadConfiguredModule(const OdString& name, OdString& reason);
  // Unloads a module and drops the commands whose code lies in it; false when it is not
  // loaded. An error thrown by the module's uninitApp reaches the caller.
  bool unloadModule(const OdString& name);
  // Unloads every module loaded here, the last loaded first; one that throws as it unloads is
  // reported on standard error and forgotten. Shutting down does this after closing the
  // documents; a front calls it earlier when modules must go while its windows still stand.
  void unloadModules();

  // HostServices
  OdSmartPtr<OdDbDatabase> readDrawingFile(const OdString& path, bool convertCodePage,
                                           bool partialLoad, int shareMode) override;
  OdDbDatabase* currentDatabase() override { return documents_.curDatabase(); }
  HostApDocManager* docManager() override { return &documents_; }
  bool highlightObjects(OdDbDatabase* db, const OdDbObjectIdArray& ids, bool zoom) override;
  void sendCommand(const OdString& text) override { commandLine_.submit(text); }
  void cmdPrint(const OdString& text) override { commandLine_.print(text); }
  bool getString(const OdString& prompt, OdString& answer) override;
  void addInputContextReactor(HostEdInputContextReactor* reactor) override {
    commandLine_.addReactor(reactor);
  }
  void removeInputContextReactor(HostEdInputContextReactor* reactor) override {
    commandLine_.removeReactor(reactor);
  }
  int messageBox(const OdString& text, const OdString& caption, HostButtons buttons,
                 HostIcon icon) override;
  int taskDialog(const HostTaskDialog& dialog) override;
  OdResBufPtr getSysVar(const OdString& name) override;
  OdResult setSysVar(const OdString& name, const OdResBuf* value) override;
  OdString translate(const OdString& text) override { return translation_.translate(text); }
  OdResult formatReal(double value, int unitMode, int precision, OdString& text) override;
  bool showHelp(const OdString& topic) override;
  bool fileExists(const OdString& path) override;
  OdString fileNameOf(const OdString& path) override;
  // From the configuration value "SupportPath" of the root key "General": folders separated
  // by ';', blanks around each ignored, relative ones and empty ones left out.
  std::vector<OdString> supportFolders() override;
  OdString loginName() override;

 private:
  HostFrontend& front_;
  std::shared_ptr<HostConfigTree> config_;
  HostCommandRegistry commands_;
  HostCommandLine commandLine_;
  HostApDocManager documents_;
  HostTranslation translation_;
  HostHelp help_;
  OdSmartPtr<HostApp> appObject_;
  std::vector<OdString> modules_;  // loaded here, in load order
};
