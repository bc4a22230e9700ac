#include "OdDbDatabaseReactor.h"

ODRX_DEFINE_RTTI_MEMBERS(OdDbDatabaseReactor, OdRxObject);
ODRX_DEFINE_INIT_MEMBERS(OdDbDatabaseReactor, OdRxObject, nullptr, "", "");

void OdDbDatabaseReactor::objectAppended(const OdDbDatabase*, const OdDbObject*) {}
void OdDbDatabaseReactor::objectUnAppended(const OdDbDatabase*, const OdDbObject*) {}
void OdDbDatabaseReactor::objectReAppended(const OdDbDatabase*, const OdDbObject*) {}
void OdDbDatabaseReactor::objectOpenedForModify(const OdDbDatabase*, const OdDbObject*) {}
void OdDbDatabaseReactor::objectModified(const OdDbDatabase*, const OdDbObject*) {}
void OdDbDatabaseReactor::objectErased(const OdDbDatabase*, const OdDbObject*, bool) {}
void OdDbDatabaseReactor::headerSysVarWillChange(const OdDbDatabase*, const OdString&) {}
void OdDbDatabaseReactor::headerSysVarChanged(const OdDbDatabase*, const OdString&) {}
void OdDbDatabaseReactor::goodbye(const OdDbDatabase*) {}
