#include "StErrorAccumulatorImpl.h"

#include "OdRxClass.h"
#include "StManagerImpl.h"

namespace st {

StErrorAccumulatorImpl::Entry StErrorAccumulatorImpl::entryFor(StError* error) const {
  Entry entry;
  entry.error = error;
  entry.plugin = manager_ ? manager_->currentPlugin() : nullptr;
  if (!entry.plugin.isNull()) {
    entry.pluginName = entry.plugin->name();
    if (OdRxClass* cls = entry.plugin->isA()) entry.pluginClass = cls->name();
  }
  return entry;
}

void StErrorAccumulatorImpl::addError(StError* error) {
  if (error) errors_.push_back(entryFor(error));
}

void StErrorAccumulatorImpl::addFixedError(StError* error, StFix* fix) {
  if (!error) return;
  auto [found, inserted] = fixedIndex_.try_emplace(error, fixed_.size());
  if (inserted) {
    fixed_.push_back(entryFor(error));
    fixed_.back().fix = fix;
  } else {
    fixed_[found->second].fix = fix;
  }
}

}  // namespace st
