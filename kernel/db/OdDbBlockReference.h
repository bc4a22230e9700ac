#pragma once

#include "OdDbEntity.h"

class OdDbAttribute;

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

  // Adds a new attribute after the insert's last one, owned by the insert, and returns its id;
  // it stays open for write until its references go. The first attribute also brings the
  // SEQEND that closes the list and sets the insert's attributes-follow flag (66). Needs the
  // insert in a drawing (eNotImplementedYet) and open for write (eNotOpenForWrite); a null
  // attribute throws OdError(eNullPtr), one already in a drawing eInvalidInput.
  OdDbObjectId appendAttribute(OdDbAttribute* attribute);

 protected:
  OdDbBlockReference() = default;
  void initNewObject() override;
};

using OdDbBlockReferencePtr = OdSmartPtr<OdDbBlockReference>;
