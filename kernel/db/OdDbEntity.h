#pragma once

#include <initializer_list>

#include "OdDbObject.h"

// An entity of a block (model space, a layout, a named block): its common properties, the
// ones a drawing standard governs. Layer, linetype and styles are stored by name; the ids
// come from the drawing's tables (null when the drawing has no record of that name).
class OdDbEntity : public OdDbObject {
  ODRX_DECLARE_MEMBERS(OdDbEntity);

  // The block record that holds the entity.
  OdDbObjectId blockId() const { return ownerId(); }

  // The entities that belong to this one and follow it in the file, which a block's
  // iterator does not list: an insert's attributes, a polyline's vertices and the SEQEND
  // that closes them, in file order (erased ones included). Empty for other entities and
  // for an entity in no drawing.
  OdDbObjectIdArray subEntityIds() const;

  OdString layer() const;
  OdDbObjectId layerId() const;
  // Moves the entity to a layer of the same drawing (OdError eWrongDatabase, eInvalidInput
  // for a record of another table, eWasErased).
  void setLayer(const OdDbObjectId& id);

  // "ByLayer" when the entity stores none.
  OdString linetype() const;
  OdDbObjectId linetypeId() const;
  void setLinetype(const OdDbObjectId& id);

  // The colour index: 0 by block, 256 by layer (when none is stored), 1-255.
  short colorIndex() const;
  // Sets the index and drops a true colour. Throws OdError(eInvalidInput) outside 0-256.
  void setColorIndex(short index);

  // kLnWtByLayer when the entity stores none.
  OdDb::LineWeight lineWeight() const;
  void setLineWeight(OdDb::LineWeight weight);

 protected:
  OdDbEntity() = default;
  void initNewObject() override;

  // A reference by name: the record of table `kind` named by the first tag `code` in
  // `subclass` (or `dflt` when there is none). For the common subclass the tag counts wherever
  // it stands before the extended data, since writers do not all keep it there; a setter
  // rewrites it where it stands.
  OdString referenceName(const char* subclass, int code, const wchar_t* dflt) const;
  OdDbObjectId referenceId(const char* subclass, int code, int kind, const wchar_t* dflt) const;
  void setReference(const char* subclass, int code, int kind, const OdDbObjectId& id,
                    std::initializer_list<int> after);
};

using OdDbEntityPtr = OdSmartPtr<OdDbEntity>;
