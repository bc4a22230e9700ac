#pragma once

#include "StExport.h"

class OdDbDatabase;
class OdDbObject;

namespace st {

// Told by a drawing's StDbReactor about every object of the drawing that was changed or
// added; the check manager answers it by deciding whether a plug-in watches the object.
//
// Both pointers are valid only for the call, and nothing should be kept of the object but its
// id. A modified object has just been closed after the change: it may be read (its class,
// isModified) but not changed. An appended object has just joined the drawing and may still
// be open for write to whoever added it: read its class, nothing more.
class ST_EXPORT StDbReactorResponder {
 public:
  virtual void objectModified(const OdDbDatabase* db, const OdDbObject* object) = 0;
  virtual void objectAppended(const OdDbDatabase* db, const OdDbObject* object) = 0;

  virtual ~StDbReactorResponder() = default;
};

}  // namespace st
