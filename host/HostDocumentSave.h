#pragma once

#include <optional>

#include "OdString.h"

class HostDocument;

// Saves a document as SAVE, SAVEAS and the closing question (HostCloseQuestion.h) do, talking
// to the user through the running host application:
//  - An empty `path` saves to the document's own file. An untitled document (a new drawing
//    never saved) then asks for a file name first ("Save drawing as: "); a cancelled prompt
//    saves nothing.
//  - When the file to be replaced is the document's own and it changed on disk since it was
//    read or last saved here (HostDocument::fileStamp against the file now: another file or
//    other content; new permissions alone do not count), a message box
//    (caption "Save", Yes/No, warning icon, default No) asks whether to replace it; No saves
//    nothing. The file is then replaced only if it is still in the state just examined, so a
//    program writing it meanwhile makes the save fail rather than be overwritten.
//  - `binary` chooses the form of the file (binary or ASCII DXF); unset keeps the drawing's.
// Returns true when the file was written: the document counts as unchanged from then on.
// Otherwise one line on the command line, starting with `command`, says why (read-only file,
// full disk, folder gone, changed on disk, ...); the file on disk is as it was and the document
// stays open and changed. A failed write never throws.
bool hostSaveDocument(HostDocument* doc, const OdString& path = OdString(),
                      std::optional<bool> binary = std::nullopt, const wchar_t* command = L"SAVE");
