#pragma once

#include "OdDbSymbolTableRecord.h"

// The registration of an application name that extended data is filed under.
class OdDbRegAppTableRecord : public OdDbSymbolTableRecord {
  ODRX_DECLARE_MEMBERS(OdDbRegAppTableRecord);

 protected:
  OdDbRegAppTableRecord() = default;
  void initNewObject() override;
  const char* subclass() const override { return "AcDbRegAppTableRecord"; }
};

using OdDbRegAppTableRecordPtr = OdSmartPtr<OdDbRegAppTableRecord>;
