#include "StErrorImpl.h"

namespace st {

void StErrorImpl::setObjectId(const OdDbObjectId& id) {
  objectId_ = id;
}

void StErrorImpl::setName(const OdString& name) {
  name_ = name;
}

void StErrorImpl::setDescription(const OdString& description) {
  description_ = description;
}

void StErrorImpl::setReason(const OdString& reason) {
  reason_ = reason;
}

void StErrorImpl::setTag(std::uint64_t tag) {
  tag_ = tag;
}

void StErrorImpl::setFlags(std::uint32_t flags) {
  flags_ = flags;
}

void StErrorImpl::addProperty(const OdString& name, const OdVariant& value) {
  properties_.emplace_back(name, value);
}

OdDbObjectId StErrorImpl::objectId() const {
  return objectId_;
}

OdString StErrorImpl::name() const {
  return name_;
}

OdString StErrorImpl::description() const {
  return description_;
}

OdString StErrorImpl::reason() const {
  return reason_;
}

std::uint64_t StErrorImpl::tag() const {
  return tag_;
}

std::uint32_t StErrorImpl::flags() const {
  return flags_;
}

std::uint32_t StErrorImpl::propertyCount() const {
  return static_cast<std::uint32_t>(properties_.size());
}

bool StErrorImpl::propertyValue(const OdString& name, OdVariant& value) const {
  for (const auto& [propertyName, propertyValue] : properties_) {
    if (propertyName == name) {
      value = propertyValue;
      return true;
    }
  }
  return false;
}

bool StErrorImpl::property(std::int32_t index, OdString& name, OdVariant& value) const {
  if (properties_.empty()) return false;
  // Widening with the sign and comparing without it turns a negative index into a huge one,
  // so one test rejects both ends.
  const auto wide = static_cast<std::uint64_t>(static_cast<std::int64_t>(index));
  if (wide > properties_.size()) return false;
  // The test above lets an index equal to the count through; there is no pair there.
  if (wide == properties_.size()) return false;
  name = properties_[wide].first;
  value = properties_[wide].second;
  return true;
}

}  // namespace st
