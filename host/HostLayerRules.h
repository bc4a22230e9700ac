#pragma once

#include <vector>

#include "OdDb.h"
#include "OdDbObjectId.h"
#include "OdString.h"

class OdDbDatabase;

// What the layer commands and the layers panel decide alike: whether a layer may be deleted,
// which lineweights a layer may have and how they are written, and which layer is current.
// Stateless; reads the drawing, never changes it.
class HostLayerRules {
 public:
  // Why the layer `layer` of `db` cannot be deleted, as a clause ("it is the current
  // layer", "2 objects use it, the first an AcDbText (handle 2F) in *Model_Space"); empty
  // when it can. Layer 0, Defpoints, the current layer and a layer of an external reference
  // cannot; nor can a layer that any live object names or points at (an entity of any block,
  // a block's own begin and end, a viewport freezing it, a layer filter). Objects the layer
  // owns (its extension dictionary) do not count. Walks the whole drawing once: ask it for one
  // layer at a time, not for every row of a list. A null or foreign id gives "it is not a
  // layer of this drawing".
  static OdString whyNotDeletable(const OdDbDatabase& db, const OdDbObjectId& layer);

  // The lineweights a layer may have, in hundredths of a millimetre, thinnest first; the
  // default (OdDb::kLnWtByLnDefault) is not among them.
  static const std::vector<OdDb::LineWeight>& lineweights();
  // "0.25" for 25, "Default" for the default; any other stored value as its number.
  static OdString lineweightText(OdDb::LineWeight weight);
  // The lineweight `text` names: a width in millimetres of the list ("0.25", ".25", "1"),
  // or "Default" in any case. False for anything else.
  static bool parseLineweight(const OdString& text, OdDb::LineWeight& weight);
  // Release number from which a drawing stores a layer's lineweight (group 370).
  static constexpr int kFirstReleaseWithLineweights = 1015;

  // The layer $CLAYER names; "0" when the drawing names none.
  static OdString currentLayer(const OdDbDatabase& db);
};
