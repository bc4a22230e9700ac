#pragma once

class HostCommandRegistry;

// Registers the host's file commands (group "HOSTCORE") in `registry`:
//   SAVE             saves the current drawing to its file; a new drawing asks for a name, and
//                    a file changed on disk meanwhile is replaced only if the user agrees
//                    (see HostDocumentSave.h)
//   SAVEAS [BINARY|ASCII] file
//                    saves it under another name, which the document takes, in the drawing's
//                    own form or the one named (binary or ASCII DXF). A file literally called
//                    "binary" or "ascii" is given with a folder: ./binary
//   TRANSMIT folder  copies the drawing as it stands, with the standards files associated with
//                    it, into the folder (made when missing): a package to hand on. The
//                    packed drawing names the packed standards files by their bare names, so
//                    the package finds them where it is unpacked; the open drawing is left
//                    as it is. The files are those a loaded module reports (see
//                    HostFileCommands.cpp); with no such module only the drawing is packed.
//   PLOT file.pdf    plots the current drawing to a PDF file through the front
//                    (HostFrontend::plotToPdf); "PLOT: wrote FILE" or "PLOT: cannot plot: why"
// Each first offers the loaded modules a silent standards check (HostSilentCheck) with its
// own command bit, then does its work. A command that cannot do its work says why in one
// line on the command line and returns false.
void registerHostFileCommands(HostCommandRegistry& registry);
