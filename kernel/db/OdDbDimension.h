#pragma once

#include "OdDbEntity.h"

// A dimension of any kind.
class OdDbDimension : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbDimension);

  // The dimension style record named by the entity ("Standard" when it stores none), or null when
  // the drawing lacks it.
  OdDbObjectId dimensionStyle() const;
  OdString dimensionStyleName() const;
  // Points the entity at a dimension style record of the same drawing (OdError eWrongDatabase,
  // eInvalidInput for a record of another table, eWasErased).
  void setDimensionStyle(const OdDbObjectId& id);

 protected:
  OdDbDimension() = default;
};

using OdDbDimensionPtr = OdSmartPtr<OdDbDimension>;
