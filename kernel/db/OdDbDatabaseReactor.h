#pragma once

#include "OdRxMacros.h"
#include "OdString.h"

class OdDbDatabase;
class OdDbObject;

// Told about changes to the objects of a database it was added to
// (OdDbDatabase::addReactor). Every event does nothing unless overridden. Reading an object
// sends nothing.
class OdDbDatabaseReactor : public OdRxObject {
  ODRX_DECLARE_MEMBERS(OdDbDatabaseReactor);

  // A new object joined the database (added to a dictionary, a table or a block).
  virtual void objectAppended(const OdDbDatabase* db, const OdDbObject* object);
  virtual void objectUnAppended(const OdDbDatabase* db, const OdDbObject* object);
  virtual void objectReAppended(const OdDbDatabase* db, const OdDbObject* object);
  // An object open for write is about to change for the first time since it was opened.
  virtual void objectOpenedForModify(const OdDbDatabase* db, const OdDbObject* object);
  // An object open for write was closed with changes.
  virtual void objectModified(const OdDbDatabase* db, const OdDbObject* object);
  // An object was erased (`erased` true) or unerased.
  virtual void objectErased(const OdDbDatabase* db, const OdDbObject* object, bool erased);
  virtual void headerSysVarWillChange(const OdDbDatabase* db, const OdString& name);
  virtual void headerSysVarChanged(const OdDbDatabase* db, const OdString& name);
  // The database is going; the reactor is removed from it afterwards.
  virtual void goodbye(const OdDbDatabase* db);

 protected:
  OdDbDatabaseReactor() = default;
};

using OdDbDatabaseReactorPtr = OdSmartPtr<OdDbDatabaseReactor>;
