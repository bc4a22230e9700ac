#pragma once

#include "StExport.h"

class OdDbDatabase;

extern "C" {
// True when `db` is not null and its named-object dictionary holds the standards list
// "AcStStandard" as a dictionary with at least one entry. The entries are not looked into
// and whether the files exist is not asked; an "AcStStandard" entry of another class, or one
// that does not open, answers false.
ST_EXPORT bool stIsDatabaseHasAttachedStandards(OdDbDatabase* db);
}
