#pragma once

#include "OdDbObjectId.h"
#include "OdRxMacros.h"
#include "OdString.h"
#include "OdVariant.h"
#include "StExport.h"

namespace st {

// One candidate replacement that a plug-in offers for an StError, taken from one standards
// file.
//
// A plug-in makes one with createObject (an StFixImpl) and fills it; the values it holds are
// the standard values of the properties, compared name by name with the error's current
// values. A fix is a small reference-counted value that lives as long as a smart pointer
// holds it.
//
// The order of the operations below is part of the contract with plug-in libraries built
// separately: new operations go at the end.
class ST_EXPORT StFix : public OdRxObject {
 public:
  ODRX_DECLARE_MEMBERS(StFix);

  // The fix's name, the entry a list of fixes shows.
  virtual void setName(const OdString& name) = 0;
  virtual void setDescription(const OdString& description) = 0;
  // The object the fix refers to; its meaning belongs to the plug-in that made the fix.
  virtual void setObjectId(const OdDbObjectId& id) = 0;
  // The full path of the standards file the fix comes from.
  virtual void setStandardsFile(const OdString& path) = 0;
  // Sets the standard value of a property; a name already present has its value replaced.
  virtual void setPropertyValue(const OdString& name, const OdVariant& value) = 0;

  virtual OdString name() const = 0;
  virtual OdString description() const = 0;
  virtual OdString standardsFile() const = 0;
  virtual OdDbObjectId objectId() const = 0;
  // The standard value of the property called `name` (exact comparison); false, with `value`
  // untouched, when the fix has none.
  virtual bool propertyValue(const OdString& name, OdVariant& value) const = 0;
};

using StFixPtr = OdSmartPtr<StFix>;

}  // namespace st
