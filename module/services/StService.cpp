#include "StService.h"

namespace st {

// Out of line so that the class has one home for its type information: services are cast
// with dynamic_cast across the module's boundary.
StService::~StService() = default;

}  // namespace st
