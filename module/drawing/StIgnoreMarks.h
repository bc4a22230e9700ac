#pragma once

#include "OdDbObjectId.h"
#include "OdString.h"
#include "StExport.h"
#include "StFlagsRecord.h"

// Ignore marks: an object whose standards problem the user chose to ignore carries a mark in
// its extension dictionary, saved with the drawing:
//   extension dictionary -> "AcStStandard" (a dictionary) -> "AcStFlags" (an xrecord:
//   group 90 the flags, group 300 the user's name).
// A null id is never marked and never an error. Objects of the wrong class on that path throw
// OdError_NotThatKindOfClass; writing to an object that cannot be opened for write passes the
// kernel's OdError on.
namespace st {

// The object's standards dictionary, or a null id when the object has none. Creates nothing.
ST_EXPORT OdDbObjectId getObjectStFlagsDictionary(const OdDbObjectId& id);
// True when the object has a standards dictionary, whatever it holds (an empty one counts).
ST_EXPORT bool hasObjectIgnoredMark(const OdDbObjectId& id);
// The mark as stored: flags from a leading group-90 buffer, then the user from a group-300
// buffer; buffers in another order stop the reading. An object without a mark gives flags 0
// and empty texts.
ST_EXPORT StFlagsRecord getObjectIgnoredFlags(const OdDbObjectId& id);
// getObjectIgnoredFlags(id).ignoredBy.
ST_EXPORT OdString getObjectIgnoredBy(const OdDbObjectId& id);
// Marks the object as ignored by `user`, replacing a mark it had; creates the extension and
// standards dictionaries when missing. False when no standards dictionary could be had or
// the mark was not stored.
ST_EXPORT bool writeObjectIgnoredMark(const OdDbObjectId& id, const OdString& user);
// Removes the object's whole standards dictionary. The object is given an extension
// dictionary when it had none, so an unmarked object comes out with an empty one.
ST_EXPORT void eraseObjectIgnoredMark(const OdDbObjectId& id);
// The name of the user to record in a mark: the host's login name when a host runs, else
// the name of the user the process runs as.
ST_EXPORT OdString getLogin();

}  // namespace st
