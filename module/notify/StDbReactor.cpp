#include "StDbReactor.h"

#include "StDbReactorResponder.h"

namespace st {

ODRX_DEFINE_MEMBERS(StDbReactor, OdDbDatabaseReactor);

void StDbReactor::objectModified(const OdDbDatabase* db, const OdDbObject* object) {
  if (responder_) responder_->objectModified(db, object);
}

void StDbReactor::objectAppended(const OdDbDatabase* db, const OdDbObject* object) {
  if (responder_) responder_->objectAppended(db, object);
}

}  // namespace st
