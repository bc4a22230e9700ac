#pragma once

#include <cstdint>

#include "StExport.h"

namespace st {

class StDWSPlugin;
class StError;

// A listener of a check manager (StManager::addReactor). Every operation does nothing unless
// overridden. The manager does not own its listeners: remove one before it goes.
//
// Listeners are told in the order they were added, on the host's one thread, and may add or
// remove listeners, themselves included, while being told. Plug-ins and errors passed in are
// valid for the call; take a reference to keep one.
//
// The order of the operations below is part of the contract with listeners built separately:
// new operations go at the end.
class ST_EXPORT StManagerReactor {
 public:
  // A problem to show the user: the current error of `plugin`. The manager waits for
  // nextError (or resetCheck) before it goes on.
  virtual void errorFound(StDWSPlugin* plugin, StError* error) {}
  // The last plug-in has no more errors; checkStatistics follows at once.
  virtual void checkFinished() {}
  // The counts of the check that just finished.
  virtual void checkStatistics(std::uint32_t found, std::uint32_t fixedAutomatically,
                               std::uint32_t fixedManually, std::uint32_t ignored) {}
  // The check was reset before every plug-in was through.
  virtual void checkInterrupted() {}
  // A check starts; raised before anything else of it.
  virtual void checkStarted() {}
  // An object the user just changed breaks the standard: `error` of `plugin`, found between
  // commands while no check runs.
  virtual void newViolation(StDWSPlugin* plugin, StError* error) {}
  // Never raised; kept so that the operations after it keep their places.
  virtual void reserved() {}
  // A standards file associated with the drawing does not exist; the check was not set up.
  virtual void missingStandardsFile() {}
  // The list of standards files is about to be replaced, or a check was set up with every
  // file found.
  virtual void standardsChanged() {}

  virtual ~StManagerReactor() = default;
};

}  // namespace st
