#pragma once

#include <string>
#include <vector>

#include "OdArray.h"
#include "OdResult.h"
#include "OdRxModule.h"
#include "OdString.h"

// Loads modules (shared libraries exporting odrxCreateModuleObject and odrxGetAPIVersion) and
// keeps each loaded module object.
//
// Finding the file. A module name may be written with a ".dll" suffix in any case, as
// configurations do: "Name.dll" and "Name" both resolve to "libName.so" or "Name.so",
// whichever is found first; "libName.so" or "Name.so" name the file itself. A name without a
// '/' is looked for in the module search path, in order: the directory of the running
// executable, then the directories listed in the environment variable STAUDIT_MODULE_PATH
// (colon separated, read at each lookup). A name with a '/' is a path and is looked for only
// there, except by loadFromSearchPath. The system's library path is not searched.
//
// Loading calls the module's odrxCreateModuleObject, refuses a module built for another
// kernel interface version, then calls initApp; a module is loaded once, and loading it again
// returns the same object. Unloading calls uninitApp, lets the module object go and closes the
// file. Modules are matched by name (see OdRxModule::moduleName) or by the file they came from.
//
// Module code is never unmapped while it may still run: the file stays open when module code
// threw during loading or unloading, or when the module object is still referenced after
// unloading. Used from one thread at a time.
class OdRxDynamicLinker {
 public:
  OdRxDynamicLinker(const OdRxDynamicLinker&) = delete;
  OdRxDynamicLinker& operator=(const OdRxDynamicLinker&) = delete;

  // The loaded module of that name, or null when it is not loaded.
  OdRxModulePtr getModule(const OdString& name) const;

  // Loads the module (or returns it when loaded already).
  // When the file is not found or the system cannot load it (a missing dependency, not a
  // shared library), returns null if `silent`, else throws OdError(eLoadFailed) naming the
  // file and the system's reason. Whatever `silent` says, a file that loads but is no module
  // of this kernel throws: OdError(eNoEntryPoint) when an entry point is missing,
  // OdError(eLoadFailed) for another interface version or no module object; errors thrown by
  // the module's initApp reach the caller, and the module is then not loaded.
  OdRxModulePtr loadModule(const OdString& name, bool silent);

  // Loads a module that a user's configuration names, and so from the module search path
  // only: code from anywhere else never runs. A name that is not a bare file name (see
  // isSearchPathName) is refused without looking at any file. When the module does not load,
  // for whatever reason loadModule would return null or throw for, returns null and sets
  // `reason` to one line in the loader's own words: "not on the module search path: DIRS",
  // "found no FILES in DIRS", the system's reason for a file that is no shared library, or
  // what the file lacks. Errors thrown by the module's initApp reach the caller.
  OdRxModulePtr loadFromSearchPath(const OdString& name, OdString& reason);

  // True when `name` is a bare file name, one loadFromSearchPath looks for: not empty, no
  // '/', and neither "." nor "..".
  static bool isSearchPathName(const OdString& name);

  // Calls uninitApp and unloads; false when no such module is loaded. When uninitApp throws,
  // the error reaches the caller and the module stays loaded.
  bool unloadModule(const OdString& name);
  // Unloads every module, the last loaded first.
  void unloadAll();

  // The address of the function or variable `symbol` that a loaded module defines itself,
  // looking through the modules in load order; null when none defines it. A symbol a module
  // only takes from a library it links against does not count, so a library shared by
  // several modules answers through the first module that is that library. For a function,
  // convert the result with reinterpret_cast. The address stays valid while that module is
  // loaded.
  void* findSymbol(const char* symbol) const;

  // The names of the loaded modules, in load order.
  OdArray<OdString> loadedModules() const;
  // The file a name resolves to on the search path, or the empty string.
  OdString findModuleFile(const OdString& name) const;
  // The directories searched, in order.
  OdArray<OdString> searchPath() const;

 private:
  friend OdRxDynamicLinker* odrxDynamicLinker();
  OdRxDynamicLinker() = default;
  ~OdRxDynamicLinker() = default;

  struct Loaded {
    OdRxModulePtr module;
    std::string path;  // canonical path of the file
    void* handle;
  };
  const Loaded* find(const OdString& name) const;
  // Why a module did not load, found before any of its code ran. `quiet` failures (no such
  // file, no shared library) are the ones loadModule(name, true) answers with null.
  struct Failure {
    OdResult code = eOk;
    bool quiet = false;
    std::string message;  // for an OdError, naming the module
    std::string reason;   // the same without the module's name, for a caller that has it
  };
  // Loads the module, or returns null and says why in `failure`.
  OdRxModulePtr load(const OdString& name, bool searchPathOnly, Failure& failure);
  // Unloads a loaded module (see unloadModule).
  void unload(OdRxModule* module);

  std::vector<Loaded> loaded_;
};

// The process's linker; never null. Never torn down: modules still loaded when the process
// ends are not unloaded, since their code cannot safely run while statics are destroyed.
OdRxDynamicLinker* odrxDynamicLinker();
