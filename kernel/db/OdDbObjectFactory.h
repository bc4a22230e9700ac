#pragma once

// Internal to TD_Db: which class an object of a file is made as, and the registration of the
// drawing classes with the run-time class system (done when TD_Db is loaded).

class OdDbDatabaseImpl;
class OdDbObject;
struct OdDbStub;

// A new object of the class the stub's tags call for (by DXF type, table and section), with
// no references; the caller binds it to the stub.
OdDbObject* odDbCreateObjectFor(OdDbDatabaseImpl& impl, OdDbStub* stub);
