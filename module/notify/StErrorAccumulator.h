#pragma once

#include "StExport.h"

namespace st {

class StError;
class StFix;

// Where a check manager in silent mode puts what it would otherwise show: every problem to
// be shown goes to addError, every successful automatic fix to addFixedError, and the check
// goes on without waiting for anyone (StManagerImpl::setErrorSink).
//
// The manager passes objects that live on after the call only if the sink takes a reference.
class ST_EXPORT StErrorAccumulator {
 public:
  virtual ~StErrorAccumulator() = default;
  // A problem that was not fixed; reported in the order found, a repeat is kept as a repeat.
  virtual void addError(StError* error) = 0;
  // A problem that `fix` fixed automatically. Reporting the same error object again replaces
  // the fix recorded for it.
  virtual void addFixedError(StError* error, StFix* fix) = 0;
};

}  // namespace st
