#pragma once

#include "OdDbEntity.h"

// A feature control frame (geometric tolerance).
class OdDbFcf : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbFcf);

  // The dimension style record named by the entity ("Standard" when it stores none), or null when
  // the drawing lacks it.
  OdDbObjectId dimensionStyle() const;
  OdString dimensionStyleName() const;
  // Points the entity at a dimension style record of the same drawing (OdError eWrongDatabase,
  // eInvalidInput for a record of another table, eWasErased).
  void setDimensionStyle(const OdDbObjectId& id);

 protected:
  OdDbFcf() = default;
};

using OdDbFcfPtr = OdSmartPtr<OdDbFcf>;
