#include "StFixImpl.h"

namespace st {

void StFixImpl::setName(const OdString& name) {
  name_ = name;
}

void StFixImpl::setDescription(const OdString& description) {
  description_ = description;
}

void StFixImpl::setObjectId(const OdDbObjectId& id) {
  objectId_ = id;
}

void StFixImpl::setStandardsFile(const OdString& path) {
  standardsFile_ = path;
}

void StFixImpl::setPropertyValue(const OdString& name, const OdVariant& value) {
  properties_.insert_or_assign(name, value);
}

OdString StFixImpl::name() const {
  return name_;
}

OdString StFixImpl::description() const {
  return description_;
}

OdString StFixImpl::standardsFile() const {
  return standardsFile_;
}

OdDbObjectId StFixImpl::objectId() const {
  return objectId_;
}

bool StFixImpl::propertyValue(const OdString& name, OdVariant& value) const {
  auto found = properties_.find(name);
  if (found == properties_.end()) return false;
  value = found->second;
  return true;
}

}  // namespace st
