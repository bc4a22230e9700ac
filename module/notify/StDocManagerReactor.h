#pragma once

#include <memory>

#include "HostApDocManagerReactor.h"
#include "StExport.h"

namespace st {

// Follows the host's documents so that every drawing with standards associated has its check
// manager while it is open (through the manager cache, StManagerCache):
//   - a document that becomes current gets a manager when its list of standards files has at
//     least one file, or has the one it has refreshed; a drawing without any list instead
//     puts the notification side into its "no standards" state (setNoStandardsHook);
//   - a document about to close loses its manager, whatever its list says now.
// A list that exists but is empty attaches nothing.
//
// One instance per process (stDocManagerReactor), which the module adds to the host's
// document manager when it starts and removes when it stops.
class ST_EXPORT StDocManagerReactor : public HostApDocManagerReactor {
 public:
  // Told, on the host's thread, that the current drawing has no standards list; the
  // status-bar button of the user interface sets it. Null (the default) for nobody.
  using NoStandardsHook = void (*)();
  static void setNoStandardsHook(NoStandardsHook hook) noexcept;

  void onDocumentBecameCurrent(HostDocument* doc) override;
  void onDocumentClosing(HostDocument* doc) override;
};

// The single reactor, made on the first call.
ST_EXPORT std::shared_ptr<StDocManagerReactor> stDocManagerReactor();
// Lets the module's hold on the reactor go (when the module unloads); the next call of
// stDocManagerReactor makes a new one.
ST_EXPORT void stReleaseDocManagerReactor();

}  // namespace st
