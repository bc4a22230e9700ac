#pragma once

#include "OdDbText.h"

// An attribute of an insert (see OdDbBlockReference::appendAttribute). A new one (createObject)
// has an empty tag (group 2) and value, height 2.5, at the origin, on layer "0".
class OdDbAttribute : public OdDbText {
  ODRX_DECLARE_MEMBERS(OdDbAttribute);

 protected:
  OdDbAttribute() = default;
  void initNewObject() override;
};

using OdDbAttributePtr = OdSmartPtr<OdDbAttribute>;
