#pragma once

#include "OdDbText.h"

// The definition of an attribute in a block. A new one (createObject) has an empty tag (group 2),
// prompt (3) and default value, height 2.5, at the origin, on layer "0".
class OdDbAttributeDefinition : public OdDbText {
  ODRX_DECLARE_MEMBERS(OdDbAttributeDefinition);

 protected:
  OdDbAttributeDefinition() = default;
  void initNewObject() override;
};

using OdDbAttributeDefinitionPtr = OdSmartPtr<OdDbAttributeDefinition>;
