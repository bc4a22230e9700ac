#pragma once

#include "OdDbObjectIterator.h"
#include "OdDbSymbolTableRecord.h"

class OdDbEntity;

// A block: model space, a paper space layout, or a named block, with its entities.
class OdDbBlockTableRecord : public OdDbSymbolTableRecord {
  ODRX_DECLARE_MEMBERS(OdDbBlockTableRecord);

  // The block's entities in file order; vertices, attributes and SEQEND belong to their
  // polyline or insert and are not listed.
  OdDbObjectIteratorPtr newIterator(bool atBeginning = true, bool skipErased = true) const;
  // Adds a new entity at the end of the block and returns its id; it stays open for write
  // until its references go. Needs the block open for write (eNotOpenForWrite); an entity
  // already in a drawing throws OdError(eInvalidInput). An attribute definition marks a named
  // block as having attributes.
  OdDbObjectId appendOdDbEntity(OdDbEntity* entity);

  bool isLayout() const;
  bool isAnonymous() const { return (blockFlags() & 1) != 0 || getName().left(1) == L"*"; }
  bool hasAttributeDefinitions() const { return (blockFlags() & 2) != 0; }
  bool isFromExternalReference() const { return (blockFlags() & 4) != 0; }

 protected:
  OdDbBlockTableRecord() = default;
  void initNewObject() override;
  const char* subclass() const override;

 private:
  // The flags of the block's BLOCK entity (group 70).
  int blockFlags() const;
};

using OdDbBlockTableRecordPtr = OdSmartPtr<OdDbBlockTableRecord>;
