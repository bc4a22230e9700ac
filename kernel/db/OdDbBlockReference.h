#pragma once

#include "OdDbEntity.h"

// An insert of a block.
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
};

using OdDbBlockReferencePtr = OdSmartPtr<OdDbBlockReference>;
