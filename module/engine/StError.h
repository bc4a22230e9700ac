#pragma once

#include <cstdint>

#include "OdDbObjectId.h"
#include "OdRxMacros.h"
#include "OdString.h"
#include "OdVariant.h"
#include "StExport.h"

namespace st {

// One standards violation that a plug-in found in the drawing being checked.
//
// A plug-in makes one with createObject (an StErrorImpl), fills it and hands it to the check
// manager, which reads it to decide what to count, skip, fix or show. An error is a small
// reference-counted value: it lives as long as a smart pointer holds it, and it holds only
// the id of the offending object, never the object itself. The state bits of flags() are
// named in StErrorFlags.h.
//
// The order of the operations below is part of the contract with plug-in libraries built
// separately: new operations go at the end.
class ST_EXPORT StError : public OdRxObject {
 public:
  ODRX_DECLARE_MEMBERS(StError);

  // The offending object in the checked drawing.
  virtual void setObjectId(const OdDbObjectId& id) = 0;
  // The title line of the violation.
  virtual void setName(const OdString& name) = 0;
  // The description of the violation, shown under its title.
  virtual void setDescription(const OdString& description) = 0;
  // The word for what the error's fixes replace; a list of the fixes uses it as the caption
  // of the column that holds their names.
  virtual void setReason(const OdString& reason) = 0;
  // A value the plug-in keeps with the error; the engine never interprets it.
  virtual void setTag(std::uint64_t tag) = 0;
  // Replaces all state bits.
  virtual void setFlags(std::uint32_t flags) = 0;
  // Appends a property and its current value; a name may appear more than once.
  virtual void addProperty(const OdString& name, const OdVariant& value) = 0;

  virtual OdDbObjectId objectId() const = 0;
  virtual OdString name() const = 0;
  virtual OdString description() const = 0;
  virtual OdString reason() const = 0;
  virtual std::uint64_t tag() const = 0;
  virtual std::uint32_t flags() const = 0;
  // The number of properties added.
  virtual std::uint32_t propertyCount() const = 0;
  // The value of the first property called `name` (exact comparison); false, with `value`
  // untouched, when there is none.
  virtual bool propertyValue(const OdString& name, OdVariant& value) const = 0;
  // The property at `index` in the order added; false, with the outputs untouched, for an
  // index outside 0 .. propertyCount() - 1.
  virtual bool property(std::int32_t index, OdString& name, OdVariant& value) const = 0;
};

using StErrorPtr = OdSmartPtr<StError>;

}  // namespace st
