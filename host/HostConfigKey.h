#pragma once

#include <memory>
#include <string>
#include <vector>

#include "OdRxObject.h"
#include "OdRxObjectImpl.h"
#include "OdVariant.h"

class HostConfigTree;
class HostConfigKey;
using HostConfigKeyPtr = OdSmartPtr<HostConfigKey>;

// Walks a list of names captured when the enumeration was asked for: later changes to the
// tree do not disturb it.
class HostConfigNames {
 public:
  explicit HostConfigNames(std::vector<std::string> names) : names_(std::move(names)) {}
  // The next name (UTF-8) into `name`; false at the end.
  bool next(std::string& name) {
    if (pos_ >= names_.size()) return false;
    name = names_[pos_++];
    return true;
  }
  std::size_t size() const noexcept { return names_.size(); }

 private:
  std::vector<std::string> names_;
  std::size_t pos_ = 0;
};

// One key of the configuration tree (see HostConfigTree): a reference-counted handle that
// names the key by its path, so it stays valid, and harmless, if the key is deleted under it
// (reads then fail and writes do nothing). Names are UTF-8 and case-sensitive.
//
// Every change is saved to the tree's file at once.
class HostConfigKey : public OdRxObject {
 public:
  // The subkey `name`. When it is missing: created if `create`, else null. Null also when
  // this key itself no longer exists. A key created while the file cannot be written lives
  // in memory for this run (the tree warns).
  HostConfigKeyPtr openSubkey(const char* name, bool create);
  // Removes the subkey `name` and everything below it; false when there was none.
  bool deleteSubkey(const char* name);
  // Names of the subkeys, or values, in creation order (empty for a deleted key).
  HostConfigNames subkeys() const;
  HostConfigNames values() const;

  // Fills `value` with the value `name`, of the type it was written with, and returns true;
  // false, leaving `value` untouched, when there is no such value.
  bool getValue(const char* name, OdVariant& value) const;
  // Writes the value; false when the type is not kept (void, byte text, object, a non-finite
  // double), when this key no longer exists, or when the file could not be written.
  bool setValue(const char* name, const OdVariant& value);
  bool deleteValue(const char* name);

  // The names from the root to this key.
  const std::vector<std::string>& path() const noexcept { return path_; }

  // The root key of `tree`.
  static HostConfigKeyPtr root(std::shared_ptr<HostConfigTree> tree);

 protected:
  HostConfigKey(std::shared_ptr<HostConfigTree> tree, std::vector<std::string> path);
  ~HostConfigKey() override;

 private:
  friend class OdRxObjectImpl<HostConfigKey>;
  std::shared_ptr<HostConfigTree> tree_;
  std::vector<std::string> path_;
};
