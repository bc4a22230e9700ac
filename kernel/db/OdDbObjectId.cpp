#include "OdDbObjectId.h"

#include "OdDbDatabase.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbObject.h"
#include "OdError.h"

const OdDbObjectId OdDbObjectId::kNull;

OdDbHandle OdDbObjectId::getHandle() const noexcept {
  return stub_ ? stub_->handle : OdDbHandle();
}

OdDbDatabase* OdDbObjectId::database() const noexcept {
  return stub_ ? stub_->database() : nullptr;
}

bool OdDbObjectId::isErased() const noexcept {
  return stub_ && stub_->isErased();
}

bool operator<(const OdDbObjectId& a, const OdDbObjectId& b) noexcept {
  return a.getHandle().value() < b.getHandle().value() ||
         (a.getHandle().value() == b.getHandle().value() && a.stub_ < b.stub_);
}

OdResult OdDbObjectId::openObject(OdDbObjectPtr& object, OdDb::OpenMode mode,
                                  bool openErased) const {
  try {
    object = safeOpenObject(mode, openErased);
    return eOk;
  } catch (const OdError& e) {
    object = nullptr;
    return e.code();
  }
}

OdDbObjectPtr OdDbObjectId::openObject(OdDb::OpenMode mode, bool openErased) const {
  OdDbObjectPtr object;
  openObject(object, mode, openErased);
  return object;
}

OdDbObjectPtr OdDbObjectId::safeOpenObject(OdDb::OpenMode mode, bool openErased) const {
  if (!stub_) throw OdError(eNullObjectId, "cannot open an object through a null id");
  if (stub_->isErased() && !openErased)
    throw OdError(eWasErased, "the object " + stub_->handle.ascii() + " is erased");
  OdDbObject* object = stub_->database()->impl().materialize(stub_);
  object->open(mode);
  return OdDbObjectPtr(object);
}
