#pragma once

#include "OdDbEntity.h"

// A single-line text (and the base of attribute definitions and attributes).
class OdDbText : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbText);

  // The text style record named by the entity ("Standard" when it stores none), or null when the
  // drawing lacks it.
  OdDbObjectId textStyle() const;
  OdString textStyleName() const;
  // Points the entity at a text style record of the same drawing (OdError eWrongDatabase,
  // eInvalidInput for a record of another table, eWasErased).
  void setTextStyle(const OdDbObjectId& id);

 protected:
  OdDbText() = default;
  void initNewObject() override;
};

using OdDbTextPtr = OdSmartPtr<OdDbText>;
