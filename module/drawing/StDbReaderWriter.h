#pragma once

#include "OdArray.h"
#include "OdRxMacros.h"
#include "OdString.h"
#include "StExport.h"

class OdDbDatabase;

namespace st {

// Reads and writes the list of standards files a drawing is checked against. The list lives
// in the drawing itself, so it travels with the file: a dictionary "AcStStandard" in the
// named-object dictionary with one xrecord per file under the keys "0", "1", ..., each
// holding the path as given (group code 1).
//
// Create one (createObject), point it at a drawing with setDatabase, then read or write as
// often as needed. Every operation answers false when no drawing was set or an object on the
// way cannot be found or opened; an object of the wrong class on the way (the named-object
// dictionary or "AcStStandard" not being dictionaries) throws OdError_NotThatKindOfClass.
class ST_EXPORT StDbReaderWriter : public OdRxObject {
  ODRX_DECLARE_MEMBERS(StDbReaderWriter);

  // Points this object at `db` (not owned: it must outlive its use here). A null `db` is
  // refused with false and the drawing set before is kept.
  virtual bool setDatabase(OdDbDatabase* db) = 0;
  // True when the named-object dictionary has an "AcStStandard" entry, even an empty one.
  virtual bool hasStandardsEntry() = 0;
  // Appends the stored paths to `files` (which is not cleared) in list order. Entries are
  // looked up by the keys "0" .. numEntries-1, so a file stored under any other key is not
  // read; an entry that is not an xrecord with a text first buffer is passed over. False
  // when there is no list or it is empty; true otherwise, even when every entry was passed
  // over.
  virtual bool readStandardFiles(OdArray<OdString>& files) = 0;
  // Replaces the list by `files`. The entries "0" .. count-1 of an existing list go, entries
  // under other keys stay; an empty `files` leaves an empty list in the drawing.
  virtual bool writeStandardFiles(const OdArray<OdString>& files) = 0;

 protected:
  StDbReaderWriter() = default;
};

using StDbReaderWriterPtr = OdSmartPtr<StDbReaderWriter>;

}  // namespace st
