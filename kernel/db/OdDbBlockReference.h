#pragma once

#include "OdDbEntity.h"

// An insert of a block. A new one (createObject) shows no block yet, at the origin, scale 1,
// rotation 0, on layer "0".
class OdDbBlockReference : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbBlockReference);

  // The block record named by the entity, or null when the drawing lacks it.
  OdDbObjectId blockTableRecord() const;
  OdString blockTableRecordName() const;
  // Points the entity at a block record of the same drawing (OdError eWrongDatabase,
  // eInvalidInput for a record of another table, eWasErased).
  void setBlockTableRecord(const OdDbObjectId& id);

 protected:
  OdDbBlockReference() = default;
  void initNewObject() override;
};

using OdDbBlockReferencePtr = OdSmartPtr<OdDbBlockReference>;
