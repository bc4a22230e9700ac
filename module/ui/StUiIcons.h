#pragma once

#include <QIcon>

namespace stui {

// The module's own icons by resource id, 16 × 16 pixels, drawn for this project and kept as
// Qt resources of the library:
//   111  the recommended fix          113  a standards file that is there
//   114  a standards file not found   115  standards associated (the status-bar button)
//   116  attention: a missing file or a new violation (the status-bar button)
// An id without an icon gives a null QIcon.
QIcon stIcon(int id);

}  // namespace stui
