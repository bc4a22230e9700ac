#include "StRankedFixes.h"

namespace st {

// Defined here so that the class's type information lives in the module alone, and a cast
// from a plug-in library's object finds the same class the caller knows.
StRankedFixes::~StRankedFixes() = default;

}  // namespace st
