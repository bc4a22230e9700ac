#pragma once

#include "OdDbObjectId.h"

class OdDbDatabase;

namespace stui {

// The model-space entities that use a named object, so that a view can show a drafter what a
// standards problem is about: for a layer, the entities on it; for a linetype, those drawn
// with it (named on the entity, or ByLayer on a layer that has it); for a text style, the
// texts, paragraph texts and attribute definitions that name it; for a dimension style, the
// dimensions, leaders and tolerances that name it. Names compare without regard to case, as
// the drawing's tables do.
//
// Returns an empty list for a null or erased id, an object of another kind, or one nothing
// in model space uses. Reads the drawing only; never throws for a broken entity (it is
// passed over).
OdDbObjectIdArray stObjectUsers(const OdDbObjectId& object);

}  // namespace stui
