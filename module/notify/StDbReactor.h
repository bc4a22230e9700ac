#pragma once

#include "OdDbDatabaseReactor.h"
#include "StExport.h"

namespace st {

class StDbReactorResponder;

// The reactor a check manager adds to its drawing: hands every modified and every appended
// object on to a responder (the manager) and leaves every other event of the database alone
// (an erased object breaks no standard). It filters nothing; the responder decides what
// matters.
//
// Made with createObject() (counted by OdRxObjectImpl); its run-time class ("StDbReactor")
// is registered by rxInit with the module's other classes, though nothing here needs it.
// The responder is not owned and starts null; whoever sets it clears it again before the
// responder goes.
class ST_EXPORT StDbReactor : public OdDbDatabaseReactor {
 public:
  ODRX_DECLARE_MEMBERS(StDbReactor);

  void setResponder(StDbReactorResponder* responder) noexcept { responder_ = responder; }
  StDbReactorResponder* responder() const noexcept { return responder_; }

  // Passes the change on to the responder; nothing without one.
  void objectModified(const OdDbDatabase* db, const OdDbObject* object) override;
  void objectAppended(const OdDbDatabase* db, const OdDbObject* object) override;

 protected:
  StDbReactor() = default;

 private:
  StDbReactorResponder* responder_ = nullptr;
};

using StDbReactorPtr = OdSmartPtr<StDbReactor>;

}  // namespace st
