#pragma once

#include "OdArray.h"
#include "OdString.h"
#include "StExport.h"

class OdDbDatabase;

namespace st {

// Where the standards files a drawing names are found, the same way in every host.
//
// A stored path that is absolute is used as it stands (also one written on another system,
// "C:\std\office.dws", which then simply does not exist here). A relative path ("office.dws",
// "..\std\office.dws") is looked for from the drawing's own folder, then from each of the
// host's support folders in order; the first existing file wins. '\' in a relative path is
// read as a folder separator. A relative path found nowhere resolves against the drawing's
// folder (or stays as given for a drawing that has no file yet), so that a missing file is
// reported where it was looked for first. Nothing is normalised in the stored list itself.
class ST_EXPORT StStandardsPaths {
 public:
  // The file `stored` names for `drawing` (null: no drawing folder). Never throws.
  static OdString resolve(const OdString& stored, const OdDbDatabase* drawing);
  // Where `stored` is looked for, in order: the path itself when absolute, else the drawing's
  // folder (when it has a file) and each support folder. Empty for an empty path.
  static OdArray<OdString> placesLooked(const OdString& stored, const OdDbDatabase* drawing);
  // Each of `stored`, resolved, in order.
  static OdArray<OdString> resolveAll(const OdArray<OdString>& stored, const OdDbDatabase* drawing);
  // True for a path starting with '/' or '\', or with a drive letter and ':'.
  static bool isAbsolute(const OdString& path);
};

}  // namespace st
