#pragma once

#include "StExport.h"

class OdDbDatabase;
class OdDbObject;

namespace st {

// Told by a drawing's StDbReactor about every object of the drawing that was changed; the
// check manager answers it by deciding whether a plug-in watches the object.
//
// Both pointers are valid only for the call. The object has just been closed after the
// change: it may be read (its class, isModified) but not changed, and nothing should be kept
// of it but its id.
class ST_EXPORT StDbReactorResponder {
 public:
  virtual void objectModified(const OdDbDatabase* db, const OdDbObject* object) = 0;

  virtual ~StDbReactorResponder() = default;
};

}  // namespace st
