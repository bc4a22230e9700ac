#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "OdDbDatabaseImpl.h"

class DxfObject;

// Where an object's tags point at symbol table records: by handle, by name, or as the link to
// the object's own container. Reads tags only; opens nothing.
//
// Pointers are the groups 320-369, 390-399, 480-481 and extended data 1005, wherever they
// stand. Names are the groups that name a record as text: 8 (layer), 6 (linetype) and
// 7 (text style) of an entity or an XRECORD, 3 (dimension style) of a dimension, leader or
// tolerance, 6 of a layer record and of a multiline style, 8 of a layer filter or index; an
// entity's names count wherever they stand before its extended data, since writers do not all keep
// them in the entity's common subclass. The first 330 of the common tags (the owner) and the
// handles of 102 groups (reactors, extension dictionary) tie an object to its container: they are
// container links, never moved.
class OdDbRecordLinks {
 public:
  enum Kind { kPointer, kName, kContainer };
  struct Link {
    std::size_t tag;  // index of the tag in the object
    Kind kind;
    OdDbDatabaseImpl::TableKind table;  // for kName: the table the name is looked up in
  };
  // Where the object is: its tags are read by the rules of its section.
  enum Place { kTables, kBlocksOrEntities, kObjects, kOther };

  static Place placeOf(std::string_view sectionName);
  // Appends the links of `obj` to `out` (which is not cleared), in tag order. A table head
  // lists its records (ownership, not use) and has none.
  static void scan(const DxfObject& obj, Place place, std::vector<Link>& out);
};
