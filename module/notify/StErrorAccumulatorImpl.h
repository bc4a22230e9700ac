#pragma once

#include <unordered_map>
#include <vector>

#include "OdString.h"
#include "StDWSPlugin.h"
#include "StError.h"
#include "StErrorAccumulator.h"
#include "StFix.h"

namespace st {

class StManagerImpl;

// What one silent check found, for whoever reports it afterwards.
//
// Each entry knows the plug-in that reported it: the accumulator asks its manager for the
// current plug-in (StManagerImpl::currentPlugin) at the moment an error is added, which is
// the plug-in whose errors the manager is walking. The plug-in's display name and class name
// are copied then, and the plug-in is held, so that the entry still describes it after the
// manager has moved on.
//
// Every error, fix and plug-in is held by reference until the accumulator goes.
class ST_EXPORT StErrorAccumulatorImpl : public StErrorAccumulator {
 public:
  struct Entry {
    StErrorPtr error;
    StFixPtr fix;           // the automatic fix; null in errors()
    StDWSPluginPtr plugin;  // null when the manager had no current plug-in
    OdString pluginName;    // the plug-in's name(), empty without a plug-in
    OdString pluginClass;   // the plug-in's run-time class name, empty without one
  };

  // `manager` tells which plug-in reports each error; not owned, it must outlive the adds.
  // Null gives entries without a plug-in.
  explicit StErrorAccumulatorImpl(const StManagerImpl* manager = nullptr) : manager_(manager) {}
  StErrorAccumulatorImpl(const StErrorAccumulatorImpl&) = delete;
  StErrorAccumulatorImpl& operator=(const StErrorAccumulatorImpl&) = delete;

  // A null error is ignored.
  void addError(StError* error) override;
  // A null error is ignored; a null fix is recorded as it is.
  void addFixedError(StError* error, StFix* fix) override;

  // The problems left unfixed, in the order reported.
  const std::vector<Entry>& errors() const noexcept { return errors_; }
  // The problems fixed automatically, one entry per error object, in the order each error
  // was first reported, with the fix reported last for it.
  const std::vector<Entry>& fixedErrors() const noexcept { return fixed_; }
  bool empty() const noexcept { return errors_.empty() && fixed_.empty(); }

 private:
  Entry entryFor(StError* error) const;

  const StManagerImpl* manager_;
  std::vector<Entry> errors_;
  std::vector<Entry> fixed_;
  // Error identity to its place in fixed_.
  std::unordered_map<const StError*, std::size_t> fixedIndex_;
};

}  // namespace st
