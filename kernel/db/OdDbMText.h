#pragma once

#include "OdDbEntity.h"

// A multi-line text.
class OdDbMText : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbMText);

  // The text style record named by the entity ("Standard" when it stores none), or null when the
  // drawing lacks it.
  OdDbObjectId textStyle() const;
  OdString textStyleName() const;
  // Points the entity at a text style record of the same drawing (OdError eWrongDatabase,
  // eInvalidInput for a record of another table, eWasErased).
  void setTextStyle(const OdDbObjectId& id);

 protected:
  OdDbMText() = default;
  void initNewObject() override;
};

using OdDbMTextPtr = OdSmartPtr<OdDbMText>;
