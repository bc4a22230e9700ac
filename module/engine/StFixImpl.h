#pragma once

#include <map>

#include "StFix.h"

namespace st {

// The fix that StFix::createObject makes: the fields of StFix, with the property values in a
// map ordered by name.
class ST_EXPORT StFixImpl : public StFix {
 public:
  void setName(const OdString& name) override;
  void setDescription(const OdString& description) override;
  void setObjectId(const OdDbObjectId& id) override;
  void setStandardsFile(const OdString& path) override;
  void setPropertyValue(const OdString& name, const OdVariant& value) override;

  OdString name() const override;
  OdString description() const override;
  OdString standardsFile() const override;
  OdDbObjectId objectId() const override;
  bool propertyValue(const OdString& name, OdVariant& value) const override;

 protected:
  // Made only through createObject, which adds the reference count.
  StFixImpl() = default;

 private:
  OdString name_;
  OdString description_;
  OdString standardsFile_;
  OdDbObjectId objectId_;
  std::map<OdString, OdVariant> properties_;
};

}  // namespace st
