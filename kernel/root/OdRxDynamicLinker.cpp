#include "OdRxDynamicLinker.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "OdError.h"

namespace {

namespace fs = std::filesystem;

bool endsWith(const std::string& text, const std::string& suffix, bool ignoreAsciiCase) {
  if (text.size() < suffix.size()) return false;
  return std::equal(suffix.begin(), suffix.end(), text.end() - static_cast<long>(suffix.size()),
                    [ignoreAsciiCase](char a, char b) {
                      if (!ignoreAsciiCase) return a == b;
                      auto lower = [](char c) {
                        return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
                      };
                      return lower(a) == lower(b);
                    });
}

std::string fileNamePart(const std::string& name) {
  auto slash = name.rfind('/');
  return slash == std::string::npos ? name : name.substr(slash + 1);
}

// "X.dll", "X", "libX.so" and "X.so" are all the module "X".
std::string moduleKey(const std::string& name) {
  std::string file = fileNamePart(name);
  if (endsWith(file, ".dll", true)) return file.substr(0, file.size() - 4);
  if (endsWith(file, ".so", false)) {
    file.resize(file.size() - 3);
    if (file.size() > 3 && file.compare(0, 3, "lib") == 0) file.erase(0, 3);
  }
  return file;
}

// The file names a module name may stand for, in the order they are tried.
std::vector<std::string> candidateFileNames(const std::string& file) {
  if (endsWith(file, ".so", false)) return {file};
  std::string base = endsWith(file, ".dll", true) ? file.substr(0, file.size() - 4) : file;
  return {"lib" + base + ".so", base + ".so"};
}

std::vector<std::string> moduleDirectories() {
  std::vector<std::string> dirs;
  std::error_code ec;
  fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  if (!ec) dirs.push_back(exe.parent_path().string());
  if (const char* env = std::getenv("STAUDIT_MODULE_PATH")) {
    std::string list(env);
    std::size_t start = 0;
    while (start <= list.size()) {
      std::size_t colon = list.find(':', start);
      if (colon == std::string::npos) colon = list.size();
      if (colon > start) dirs.push_back(list.substr(start, colon - start));
      start = colon + 1;
    }
  }
  return dirs;
}

// The canonical path of the file `name` resolves to, or empty. `tried`, when given, receives
// a description of where it was looked for.
std::string resolveModuleFile(const std::string& name, std::string* tried) {
  if (name.empty()) {
    if (tried) *tried = "an empty module name";
    return {};
  }
  std::vector<std::string> dirs;
  auto slash = name.rfind('/');
  if (slash != std::string::npos) {
    dirs.push_back(slash == 0 ? "/" : name.substr(0, slash));
  } else {
    dirs = moduleDirectories();
  }
  std::vector<std::string> files = candidateFileNames(fileNamePart(name));
  for (const auto& dir : dirs) {
    for (const auto& file : files) {
      std::error_code ec;
      fs::path candidate = fs::path(dir) / file;
      if (!fs::is_regular_file(candidate, ec)) continue;
      fs::path canonical = fs::canonical(candidate, ec);
      return ec ? candidate.string() : canonical.string();
    }
  }
  if (tried) {
    std::string list;
    for (std::size_t i = 0; i < files.size(); ++i) list += (i ? " or " : "") + files[i];
    std::string where;
    for (std::size_t i = 0; i < dirs.size(); ++i) where += (i ? ", " : "") + dirs[i];
    *tried = list + " in " + (where.empty() ? "no directory" : where);
  }
  return {};
}

template <class Function>
Function entryPoint(void* handle, const char* symbol) {
  // POSIX guarantees that a function's address survives the trip through void*.
  return reinterpret_cast<Function>(dlsym(handle, symbol));
}

}  // namespace

OdRxDynamicLinker* odrxDynamicLinker() {
  // Never destroyed; see the header. It stays reachable, so it is no leak.
  static OdRxDynamicLinker* const linker = new OdRxDynamicLinker();
  return linker;
}

const OdRxDynamicLinker::Loaded* OdRxDynamicLinker::find(const OdString& name) const {
  const std::string utf8 = name.toUtf8();
  const OdString key = OdString::fromUtf8(moduleKey(utf8));
  for (const auto& entry : loaded_) {
    if (entry.module->moduleName() == key) return &entry;
  }
  const std::string path = resolveModuleFile(utf8, nullptr);
  if (path.empty()) return nullptr;
  for (const auto& entry : loaded_) {
    if (entry.path == path) return &entry;
  }
  return nullptr;
}

OdRxModulePtr OdRxDynamicLinker::getModule(const OdString& name) const {
  const Loaded* entry = find(name);
  return entry ? entry->module : OdRxModulePtr();
}

bool OdRxDynamicLinker::isSearchPathName(const OdString& name) {
  const std::string utf8 = name.toUtf8();
  return !utf8.empty() && utf8.find('/') == std::string::npos && utf8 != "." && utf8 != "..";
}

OdRxModulePtr OdRxDynamicLinker::loadModule(const OdString& name, bool silent) {
  Failure failure;
  OdRxModulePtr module = load(name, false, failure);
  if (module || (silent && failure.quiet)) return module;
  throw OdError(failure.code, failure.message);
}

OdRxModulePtr OdRxDynamicLinker::loadFromSearchPath(const OdString& name, OdString& reason) {
  Failure failure;
  OdRxModulePtr module = load(name, true, failure);
  if (!module) reason = OdString::fromUtf8(failure.reason);
  return module;
}

OdRxModulePtr OdRxDynamicLinker::load(const OdString& name, bool searchPathOnly, Failure& failure) {
  const std::string utf8 = name.toUtf8();
  auto fail = [&](OdResult code, bool quiet, std::string message, std::string reason) {
    failure = Failure{code, quiet, std::move(message), std::move(reason)};
    return OdRxModulePtr();
  };
  // Checked before looking for a loaded module, which a path would match by its file name.
  if (searchPathOnly && !isSearchPathName(name)) {
    std::string where;
    for (const auto& dir : moduleDirectories()) where += (where.empty() ? "" : ", ") + dir;
    std::string reason =
        "not on the module search path: " + (where.empty() ? "no directory" : where);
    return fail(eLoadFailed, true, "cannot load module " + utf8 + ": " + reason, reason);
  }
  if (const Loaded* entry = find(name)) return entry->module;

  std::string tried;
  const std::string path = resolveModuleFile(utf8, &tried);
  if (path.empty())
    return fail(eLoadFailed, true, "cannot load module " + utf8 + ": found no " + tried,
                "found no " + tried);

  dlerror();
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    const char* said = dlerror();
    const std::string reason = said ? said : path + ": unknown reason";
    return fail(eLoadFailed, true, "cannot load module " + utf8 + " from " + path + ": " + reason,
                reason);
  }

  auto create = entryPoint<OdRxModule* (*)()>(handle, "odrxCreateModuleObject");
  auto version = entryPoint<OdRxApiVersion (*)()>(handle, "odrxGetAPIVersion");
  if (!create || !version) {
    dlclose(handle);
    const std::string reason = "module file " + path + " has no " +
                               (create ? "odrxGetAPIVersion" : "odrxCreateModuleObject") +
                               " entry point";
    return fail(eNoEntryPoint, false, reason, reason);
  }
  const OdRxApiVersion built = version();
  if (built != kOdRxApiVersion) {
    dlclose(handle);
    const std::string reason = "module file " + path + " was built for kernel interface version " +
                               std::to_string(built) + ", this kernel has version " +
                               std::to_string(kOdRxApiVersion);
    return fail(eLoadFailed, false, reason, reason);
  }

  // From here on module code has run; should it throw, the file stays open (see the header).
  OdRxModulePtr module(create(), kOdRxObjAttach);
  if (!module) {
    dlclose(handle);
    const std::string reason =
        "module file " + path + " made no module object in odrxCreateModuleObject";
    return fail(eLoadFailed, false, reason, reason);
  }
  module->name_ = OdString::fromUtf8(moduleKey(utf8));
  module->fileName_ = OdString::fromUtf8(path);
  // Listed before initApp, so that initApp can already find its own module.
  loaded_.push_back(Loaded{module, path, handle});
  try {
    module->initApp();
  } catch (...) {
    auto it = std::find_if(loaded_.begin(), loaded_.end(),
                           [&](const Loaded& entry) { return entry.module == module; });
    if (it != loaded_.end()) loaded_.erase(it);
    throw;
  }
  return module;
}

bool OdRxDynamicLinker::unloadModule(const OdString& name) {
  const Loaded* entry = find(name);
  if (!entry) return false;
  unload(entry->module.get());
  return true;
}

void OdRxDynamicLinker::unloadAll() {
  while (!loaded_.empty()) unload(loaded_.back().module.get());
}

void OdRxDynamicLinker::unload(OdRxModule* module) {
  module->uninitApp();
  // uninitApp may have loaded or unloaded other modules; look the entry up again.
  auto it = std::find_if(loaded_.begin(), loaded_.end(),
                         [module](const Loaded& entry) { return entry.module.get() == module; });
  if (it == loaded_.end()) return;
  Loaded gone = std::move(*it);
  loaded_.erase(it);
  const bool lastReference = gone.module->numRefs() == 1;
  gone.module.release();  // the module's destructor runs here, while its code is mapped
  if (lastReference) dlclose(gone.handle);
}

void* OdRxDynamicLinker::findSymbol(const char* symbol) const {
  if (!symbol || !*symbol) return nullptr;
  for (const auto& entry : loaded_) {
    void* address = dlsym(entry.handle, symbol);
    if (!address) continue;
    // dlsym also searches the libraries the module depends on; keep only what lies in the
    // module's own file.
    Dl_info info{};
    if (!dladdr(address, &info) || !info.dli_fname) continue;
    std::error_code ec;
    if (fs::equivalent(fs::path(info.dli_fname), fs::path(entry.path), ec)) return address;
  }
  return nullptr;
}

OdArray<OdString> OdRxDynamicLinker::loadedModules() const {
  OdArray<OdString> names;
  for (const auto& entry : loaded_) names.append(entry.module->moduleName());
  return names;
}

OdString OdRxDynamicLinker::findModuleFile(const OdString& name) const {
  return OdString::fromUtf8(resolveModuleFile(name.toUtf8(), nullptr));
}

OdArray<OdString> OdRxDynamicLinker::searchPath() const {
  OdArray<OdString> dirs;
  for (const auto& dir : moduleDirectories()) dirs.append(OdString::fromUtf8(dir));
  return dirs;
}
