#pragma once

class HostDocument;

// Whether `doc` may close now, asked of the user of the running host application the same way
// by the CLOSE command and by a desktop window closing a drawing. A changed document
// (HostDocument::isModified) gets a message box (caption "Close", Yes/No/Cancel, question icon,
// default Yes) "Save changes to NAME?":
//   Yes     saves it as SAVE does (the silent standards check first, when the document is the
//           current one; hostSaveDocument: an untitled one asks for a file name) and lets it close
//           only when the save succeeded; a failed or cancelled save keeps it open
//   No      lets it close, its changes dropped
//   Cancel  keeps it open
// An unchanged document may close without a question. False for null or a closed document.
// Nothing is closed here: the caller closes the document when the answer is true.
bool hostConfirmClose(HostDocument* doc);
