#pragma once

// Internal to TD_Db: the drawing a new database starts from, as the text of an ASCII DXF
// file of release 2018: the header variables a reader needs, the standard tables and
// records (layer "0"; linetypes ByBlock, ByLayer and Continuous; text and dimension style
// Standard; the application ACAD; the active viewport), the blocks *Model_Space and
// *Paper_Space with their layouts, and the named-object dictionary with the group, layout
// and plot style dictionaries. Handles run up to 1F; $HANDSEED is 20.
const char* odDbEmptyDrawingDxf();
