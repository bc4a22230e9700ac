#pragma once

#include "OdDbObject.h"

// Walks a list of objects (the entities of a block) as it was when the iterator was made.
class OdDbObjectIterator : public OdRxObject {
  ODRX_DECLARE_MEMBERS(OdDbObjectIterator);

  void start(bool atBeginning = true, bool skipErased = true);
  bool done() const noexcept { return pos_ < 0 || pos_ >= static_cast<long>(ids_.size()); }
  void step(bool forward = true, bool skipErased = true);
  OdDbObjectId objectId() const { return done() ? OdDbObjectId() : ids_[pos_]; }
  // The current object opened in `mode` (null when done()).
  OdDbObjectPtr entity(OdDb::OpenMode mode = OdDb::kForRead, bool openErased = false) const;
  bool seek(const OdDbObjectId& id);

  void setIds(OdDbObjectIdArray ids) { ids_ = std::move(ids); }

 protected:
  OdDbObjectIterator() = default;

 private:
  void skip(bool forward);
  OdDbObjectIdArray ids_;
  long pos_ = 0;
};

using OdDbObjectIteratorPtr = OdSmartPtr<OdDbObjectIterator>;
