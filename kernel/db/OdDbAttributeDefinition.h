#pragma once

#include "OdDbText.h"

// The definition of an attribute in a block.
class OdDbAttributeDefinition : public OdDbText {
  ODRX_DECLARE_MEMBERS(OdDbAttributeDefinition);

 protected:
  OdDbAttributeDefinition() = default;
};

using OdDbAttributeDefinitionPtr = OdSmartPtr<OdDbAttributeDefinition>;
