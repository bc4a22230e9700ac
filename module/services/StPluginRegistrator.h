#pragma once

#include "OdArray.h"
#include "OdString.h"
#include "StPluginInfo.h"
#include "StService.h"

namespace st {

// Knows the registered standards plug-ins: which library holds each, and whether the user
// has it in use. Registrations are read from the configuration store once, at init, which
// also loads every registered library so that its plug-in classes can be created by name
// (odrxCreateObject); the registry itself creates no plug-ins.
//
// Class names are matched without regard to case; when two libraries register the same
// class, the first library's entry answers.
class ST_EXPORT StPluginRegistrator : public StService {
 public:
  // Switch a plug-in in or out of use, in memory and in the configuration tree, where the
  // switch is written under the class name as registered, however `className` is spelled.
  // An unknown class name changes nothing.
  virtual void setPluginInUse(const OdString& className) = 0;
  virtual void setPluginNotInUse(const OdString& className) = 0;
  // True, with `info` filled, when the class is registered; false, `info` untouched,
  // otherwise.
  virtual bool getPluginInfo(const OdString& className, StPluginInfo& info) = 0;
  // Every registration: libraries in registration order, each library's plug-ins in order.
  virtual OdArray<StPluginInfo> getPluginInfos() = 0;
};

}  // namespace st
