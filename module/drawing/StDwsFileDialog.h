#pragma once

#include "OdString.h"
#include "StExport.h"

class QWidget;

namespace st {

// Lets the user pick a standards file: a file-open dialog owned by `parent` (may be null)
// for existing "*.dws" files, read-only option hidden, filter "Drawing Standard (*.dws)"
// in the user's language. On OK `path` receives the full path chosen and the answer is
// true; on cancel `path` is left as it was. Its body is part of the module's Qt interface
// and is linked only with it.
ST_EXPORT bool showSelectDwsFileDialog(QWidget* parent, OdString& path);

}  // namespace st
