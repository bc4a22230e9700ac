#include "StartupModules.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <string>

#include "HostApplication.h"
#include "HostConfigTree.h"
#include "OdRxDynamicLinker.h"

namespace {
const char* const kApplications = "Applications";

struct Bundled {
  const wchar_t* name;
  int order;
};
// The user-interface library depends on the module, so it loads after it.
constexpr Bundled kBundled[] = {{L"StandardsAudit", 10}, {L"StandardsAuditUi", 20}};

struct Registration {
  std::string name;
  std::int64_t order = 100;
};
}  // namespace

void StartupModules::registerBundled(HostApplication& app) {
  HostConfigTree& tree = app.configTree();
  HostConfigTree::Batch batch(tree);
  for (const Bundled& module : kBundled) {
    const std::string name = OdString(module.name).toUtf8();
    if (tree.hasKey({kApplications, name})) continue;
    if (odrxDynamicLinker()->findModuleFile(module.name).isEmpty()) continue;
    tree.createKey({}, kApplications);
    tree.createKey({kApplications}, name);
    tree.setValue({kApplications, name}, "LoadOnStartup", OdVariant(true));
    tree.setValue({kApplications, name}, "LoadOrder", OdVariant(std::int32_t(module.order)));
  }
}

std::vector<StartupModules::Failure> StartupModules::loadAll(HostApplication& app) {
  HostConfigTree& tree = app.configTree();
  std::vector<Registration> toLoad;
  for (const std::string& name : tree.subkeyNames({kApplications})) {
    auto load = tree.getValue({kApplications, name}, "LoadOnStartup");
    if (!load || load->varType() != OdVariant::kBool || !load->getBool()) continue;
    Registration registration{name};
    if (auto order = tree.getValue({kApplications, name}, "LoadOrder"))
      order->getInteger(registration.order);
    toLoad.push_back(registration);
  }
  std::stable_sort(toLoad.begin(), toLoad.end(), [](const Registration& a, const Registration& b) {
    return a.order != b.order ? a.order < b.order : a.name < b.name;
  });

  std::vector<Failure> failures;
  for (const Registration& registration : toLoad) {
    const OdString name = OdString::fromUtf8(registration.name);
    OdString reason;
    try {
      if (app.loadConfiguredModule(name, reason)) continue;
    } catch (const std::exception& e) {
      reason = OdString::fromUtf8(e.what());
    }
    app.cmdPrintf(L"module %ls was not loaded: %ls\n", name.c_str(), reason.c_str());
    failures.push_back({name, reason});
  }
  return failures;
}
