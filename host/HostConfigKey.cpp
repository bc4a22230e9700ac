#include "HostConfigKey.h"

#include "HostConfigTree.h"

HostConfigKey::HostConfigKey(std::shared_ptr<HostConfigTree> tree, std::vector<std::string> path)
    : tree_(std::move(tree)), path_(std::move(path)) {}

HostConfigKey::~HostConfigKey() = default;

HostConfigKeyPtr HostConfigKey::root(std::shared_ptr<HostConfigTree> tree) {
  return OdRxObjectImpl<HostConfigKey>::createObject(std::move(tree), std::vector<std::string>{});
}

HostConfigKeyPtr HostConfigKey::openSubkey(const char* name, bool create) {
  if (!name || !*name || !tree_->hasKey(path_)) return nullptr;
  std::vector<std::string> sub = path_;
  sub.push_back(name);
  if (!tree_->hasKey(sub)) {
    if (!create) return nullptr;
    // A key that could not be saved still exists for this run, like an unsaved value.
    tree_->createKey(path_, name);
    if (!tree_->hasKey(sub)) return nullptr;
  }
  return OdRxObjectImpl<HostConfigKey>::createObject(tree_, std::move(sub));
}

bool HostConfigKey::deleteSubkey(const char* name) {
  return name && tree_->deleteKey(path_, name);
}

HostConfigNames HostConfigKey::subkeys() const {
  return HostConfigNames(tree_->subkeyNames(path_));
}

HostConfigNames HostConfigKey::values() const {
  return HostConfigNames(tree_->valueNames(path_));
}

bool HostConfigKey::getValue(const char* name, OdVariant& value) const {
  if (!name) return false;
  auto found = tree_->getValue(path_, name);
  if (!found) return false;
  value = std::move(*found);
  return true;
}

bool HostConfigKey::setValue(const char* name, const OdVariant& value) {
  return name && *name && tree_->setValue(path_, name, value);
}

bool HostConfigKey::deleteValue(const char* name) {
  return name && tree_->deleteValue(path_, name);
}
