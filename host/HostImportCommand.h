#pragma once

class HostCommandRegistry;

// Registers IMPORT (group "HOSTCORE") in `registry`:
//   IMPORT file   inserts the drawing `file` into the current drawing as a block named after
//                 the file (OdDbDatabase::insert: the block holds copies of the file's
//                 model space, one insert of it goes into model space at the origin on the
//                 current layer) and says so in one line:
//                     IMPORT: plan.dxf inserted as block plan (12 entities)
// Without a word on the command line it asks "Drawing to import: ". With a current drawing
// it first offers the loaded modules a silent standards check (HostSilentCheck,
// kHostCheckImport), then reads the file. A file that cannot be read or inserted is named
// with the reason in one line, the drawing left as it was, and the command returns false;
// so does IMPORT with no drawing open.
void registerHostImportCommand(HostCommandRegistry& registry);
