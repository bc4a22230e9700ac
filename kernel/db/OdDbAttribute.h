#pragma once

#include "OdDbText.h"

// An attribute of an insert.
class OdDbAttribute : public OdDbText {
  ODRX_DECLARE_MEMBERS(OdDbAttribute);

 protected:
  OdDbAttribute() = default;
};

using OdDbAttributePtr = OdSmartPtr<OdDbAttribute>;
