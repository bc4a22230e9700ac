#pragma once

// What the tests of the module's drawing data share: drawings saved and read back through
// real files, ezdxf run on them, and records made with the kernel.

#include "DrawingBuilders.h"
#include "TestSupport.h"

namespace drawingtest {

using testsupport::addLayer;
using testsupport::addLinetype;
using testsupport::ezdxf;
using testsupport::saveAndReload;

}  // namespace drawingtest
