#pragma once

#include <utility>
#include <vector>

#include "StError.h"

namespace st {

// The error that StError::createObject makes: the fields of StError, kept as set.
class ST_EXPORT StErrorImpl : public StError {
 public:
  void setObjectId(const OdDbObjectId& id) override;
  void setName(const OdString& name) override;
  void setDescription(const OdString& description) override;
  void setReason(const OdString& reason) override;
  void setTag(std::uint64_t tag) override;
  void setFlags(std::uint32_t flags) override;
  void addProperty(const OdString& name, const OdVariant& value) override;

  OdDbObjectId objectId() const override;
  OdString name() const override;
  OdString description() const override;
  OdString reason() const override;
  std::uint64_t tag() const override;
  std::uint32_t flags() const override;
  std::uint32_t propertyCount() const override;
  bool propertyValue(const OdString& name, OdVariant& value) const override;
  bool property(std::int32_t index, OdString& name, OdVariant& value) const override;

 protected:
  // Made only through createObject, which adds the reference count.
  StErrorImpl() = default;

 private:
  OdDbObjectId objectId_;
  OdString name_;
  OdString description_;
  OdString reason_;
  std::uint64_t tag_ = 0;
  std::uint32_t flags_ = 0;
  std::vector<std::pair<OdString, OdVariant>> properties_;
};

}  // namespace st
