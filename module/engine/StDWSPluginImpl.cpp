#include "StDWSPluginImpl.h"

namespace st {

// Compiled once here, so that every member of the base is checked against the interface
// even before a plug-in overrides it.
template class StDWSPluginImplBase<StDWSPlugin>;

}  // namespace st
