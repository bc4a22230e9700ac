#include "HostApplication.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>

#include "HostBuiltinCommands.h"
#include "HostConfigTree.h"
#include "HostFrontend.h"
#include "HostPaths.h"
#include "HostUser.h"
#include "OdDbDatabase.h"
#include "OdError.h"
#include "OdRxDynamicLinker.h"

namespace {
HostApplication* g_current = nullptr;

// Refuses a second host before anything of it is made (the first one's file is left alone).
HostFrontend& checkNoneRunning(HostFrontend& front) {
  if (g_current) throw OdError(eAlreadyRegistered, "a host application is running already");
  return front;
}

std::shared_ptr<HostConfigTree> openConfig(std::filesystem::path file, bool detached) {
  if (file.empty()) file = HostConfigTree::defaultPath();
  if (detached) return HostConfigTree::openDetached(file);
  if (file.empty())
    std::fprintf(stderr,
                 "standards-audit: warning: no place for the configuration file (set "
                 "STAUDIT_CONFIG or HOME); settings last for this run only\n");
  return HostConfigTree::open(file);
}
}  // namespace

HostApplication::HostApplication(HostFrontend& front) : HostApplication(front, Options{}) {}

HostApplication::HostApplication(HostFrontend& front, Options options)
    : front_(checkNoneRunning(front)),
      config_(openConfig(std::move(options.configFile), options.detachedConfig)),
      commandLine_(commands_, front),
      documents_([this](const OdString& line) { commandLine_.print(line + L"\n"); }) {
  appObject_ = OdRxObjectImpl<HostApp>::createObject(this);
  registerHostBuiltins(commands_);
  g_current = this;
}

HostApplication::~HostApplication() {
  documents_.closeAll();
  unloadModules();
  appObject_->app_ = nullptr;
  g_current = nullptr;
}

void HostApplication::unloadModules() {
  while (!modules_.empty()) {
    OdString name = modules_.back();
    try {
      unloadModule(name);
    } catch (const std::exception& e) {
      std::fprintf(stderr, "standards-audit: module %s failed to unload: %s\n",
                   name.toUtf8().c_str(), e.what());
      std::erase(modules_, name);
    }
  }
}

HostApplication* HostApplication::current() noexcept {
  return g_current;
}

HostApplication& HostApplication::running() {
  if (!g_current) throw OdError(eNotInitializedYet, "no host application is running");
  return *g_current;
}

bool HostApplication::highlightObjects(OdDbDatabase* db, const OdDbObjectIdArray& ids, bool zoom) {
  HostDocument* doc = db ? documents_.documentOf(db) : nullptr;
  return doc && front_.highlightObjects(doc, ids, zoom);
}

HostStatusBar* HostApplication::statusBar() {
  return front_.statusBar();
}

HostDocument* HostApplication::commandDocument(const wchar_t* command) {
  HostDocument* doc = documents_.curDocument();
  if (!doc) commandLine_.printf(L"%ls: no document is open\n", command);
  return doc;
}

HostConfigKeyPtr HostApplication::configRoot() {
  return HostConfigKey::root(config_);
}

OdRxModulePtr HostApplication::loadModule(const OdString& name) {
  // A module registers its settings as it starts: one write of the file for all of them.
  HostConfigTree::Batch batch(*config_);
  OdRxModulePtr module = odrxDynamicLinker()->loadModule(name, false);
  const OdString& loaded = module->moduleName();
  if (std::find(modules_.begin(), modules_.end(), loaded) == modules_.end())
    modules_.push_back(loaded);
  return module;
}

OdRxModulePtr HostApplication::loadConfiguredModule(const OdString& name, OdString& reason) {
  HostConfigTree::Batch batch(*config_);
  OdRxModulePtr module = odrxDynamicLinker()->loadFromSearchPath(name, reason);
  if (!module) return module;
  const OdString& loaded = module->moduleName();
  if (std::find(modules_.begin(), modules_.end(), loaded) == modules_.end())
    modules_.push_back(loaded);
  return module;
}

bool HostApplication::unloadModule(const OdString& name) {
  OdRxModulePtr module = odrxDynamicLinker()->getModule(name);
  if (!module) return false;
  const OdString moduleName = module->moduleName();
  const OdString file = module->moduleFileName();
  module.release();
  bool unloaded = odrxDynamicLinker()->unloadModule(moduleName);
  std::erase(modules_, moduleName);
  // Commands the module left behind would run code that is gone.
  int dropped = commands_.removeFromFile(file);
  if (dropped > 0)
    commandLine_.printf(L"module %ls left %d command(s) registered; they were removed\n",
                        moduleName.c_str(), dropped);
  return unloaded;
}

OdSmartPtr<OdDbDatabase> HostApplication::readDrawingFile(const OdString& path, bool, bool, int) {
  try {
    return OdDbDatabase::readFile(HostPaths::toPath(path));
  } catch (const OdError& e) {
    commandLine_.printf(L"cannot read drawing %ls: %ls\n", path.c_str(), e.description().c_str());
  }
  return nullptr;
}

bool HostApplication::getString(const OdString& prompt, OdString& answer) {
  if (!prompt.isEmpty()) commandLine_.print(prompt);
  bool got = commandLine_.takeWord(answer);
  OdString line;
  while (!got && front_.readCommandInput(line)) {
    if (line.trimLeft().trimRight().isEmpty()) break;
    commandLine_.feed(line + L"\n");
    got = commandLine_.takeWord(answer);
  }
  if (!prompt.isEmpty()) commandLine_.print(got ? answer + L"\n" : OdString(L"*cancel*\n"));
  return got;
}

int HostApplication::messageBox(const OdString& text, const OdString& caption, HostButtons buttons,
                                HostIcon icon) {
  return front_.showMessageBox(HostMessageBox{text, caption, buttons, icon});
}

int HostApplication::taskDialog(const HostTaskDialog& dialog) {
  return front_.showTaskDialog(dialog);
}

OdResBufPtr HostApplication::getSysVar(const OdString& name) {
  HostDocument* doc = documents_.curDocument();
  return doc ? doc->sysVars().get(name) : nullptr;
}

OdResult HostApplication::setSysVar(const OdString& name, const OdResBuf* value) {
  return documents_.setSysVar(documents_.curDocument(), name, value);
}

bool HostApplication::showHelp(const OdString& topic) {
  if (help_.show(topic, front_)) return true;
  commandLine_.printf(L"no help page for \"%ls\" (looked for %ls)\n", topic.c_str(),
                      help_.pageFor(topic).c_str());
  return false;
}

bool HostApplication::fileExists(const OdString& path) {
  return HostPaths::fileExists(path);
}

OdString HostApplication::fileNameOf(const OdString& path) {
  return HostPaths::fileNameOf(path);
}

std::vector<OdString> HostApplication::supportFolders() {
  std::vector<OdString> folders;
  std::optional<OdVariant> value = config_->getValue({"General"}, "SupportPath");
  if (!value || value->varType() != OdVariant::kString) return folders;
  const std::string list = value->getString().toUtf8();
  std::size_t start = 0;
  while (start <= list.size()) {
    std::size_t end = list.find(';', start);
    if (end == std::string::npos) end = list.size();
    std::string folder = list.substr(start, end - start);
    const auto first = folder.find_first_not_of(" \t");
    const auto last = folder.find_last_not_of(" \t");
    folder = first == std::string::npos ? std::string() : folder.substr(first, last - first + 1);
    // A relative folder would depend on where the host was started.
    if (!folder.empty() && std::filesystem::path(folder).is_absolute())
      folders.push_back(OdString::fromUtf8(folder));
    start = end + 1;
  }
  return folders;
}

OdString HostApplication::loginName() {
  return HostUser::loginName();
}

OdResult HostApplication::formatReal(double value, int unitMode, int precision, OdString& text) {
  if ((unitMode != 1 && unitMode != 2) || precision < -1 || precision > 8 || !std::isfinite(value))
    return eInvalidInput;
  if (precision == -1) {
    OdDbDatabase* db = currentDatabase();
    precision = db ? db->getLUPREC() : 4;
  }
  text = OdString::format(unitMode == 1 ? "%.*E" : "%.*f", precision, value);
  return eOk;
}
