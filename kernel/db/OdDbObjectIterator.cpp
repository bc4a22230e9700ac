#include "OdDbObjectIterator.h"

ODRX_DEFINE_RTTI_MEMBERS(OdDbObjectIterator, OdRxObject);
ODRX_DEFINE_PSEUDOCONSTRUCTOR(OdDbObjectIterator, OdDbObjectIterator);
ODRX_DEFINE_INIT_MEMBERS(OdDbObjectIterator, OdRxObject, &OdDbObjectIterator::pseudoConstructor, "",
                         "");

void OdDbObjectIterator::skip(bool forward) {
  while (!done() && ids_[pos_].isErased()) pos_ += forward ? 1 : -1;
}

void OdDbObjectIterator::start(bool atBeginning, bool skipErased) {
  pos_ = atBeginning ? 0 : static_cast<long>(ids_.size()) - 1;
  if (skipErased) skip(atBeginning);
}

void OdDbObjectIterator::step(bool forward, bool skipErased) {
  if (done()) return;
  pos_ += forward ? 1 : -1;
  if (skipErased) skip(forward);
}

OdDbObjectPtr OdDbObjectIterator::entity(OdDb::OpenMode mode, bool openErased) const {
  return done() ? OdDbObjectPtr() : ids_[pos_].safeOpenObject(mode, openErased);
}

bool OdDbObjectIterator::seek(const OdDbObjectId& id) {
  for (long i = 0; i < static_cast<long>(ids_.size()); ++i)
    if (ids_[i] == id) {
      pos_ = i;
      return true;
    }
  return false;
}
