#include "OdRxModule.h"

// Out of line so that the class's virtual table lives in TD_Root.
OdRxModule::~OdRxModule() = default;

ODRX_NO_CONS_DEFINE_MEMBERS(OdRxModule, OdRxObject);
