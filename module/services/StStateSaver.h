#pragma once

#include "OdArray.h"
#include "OdString.h"
#include "OdVariant.h"
#include "StService.h"

namespace st {

// The module's persistent configuration: values kept in the host's configuration tree under
// the module key cmddata/"StandardsAudit", at three depths: on the module key itself, on a
// plug-in library key (module key/"Plugins"/library) and on a plug-in key inside a library
// key. Its init writes the default plug-in registration when the library key
// "StStandardPlugins" is absent.
//
// Without a configuration tree, or without "cmddata" in it, the module has no persistent
// storage for the run: getters fail (false, empty list) and setters write nothing.
// Getters never create keys; the library and plug-in setters create missing keys on the way.
// Setters take the value by value: it is the store's, and freed on every path.
// Names are compared as the tree compares them, with case.
class ST_EXPORT StStateSaver : public StService {
 public:
  virtual void setValue(const OdString& name, OdVariant value) = 0;
  virtual void setLibraryValue(const OdString& library, const OdString& name, OdVariant value) = 0;
  virtual void setPluginValue(const OdString& library, const OdString& plugin, const OdString& name,
                              OdVariant value) = 0;
  // True, with `value` filled with the type it was written with, when the value exists;
  // false, `value` untouched, otherwise.
  virtual bool getValue(const OdString& name, OdVariant& value) = 0;
  virtual bool getLibraryValue(const OdString& library, const OdString& name, OdVariant& value) = 0;
  virtual bool getPluginValue(const OdString& library, const OdString& plugin, const OdString& name,
                              OdVariant& value) = 0;
  // Names of the plug-in keys of a library, or of the library keys, in the tree's order;
  // empty for a library that does not exist.
  virtual OdArray<OdString> getPluginKeys(const OdString& library) = 0;
  virtual OdArray<OdString> getLibraryKeys() = 0;
};

}  // namespace st
