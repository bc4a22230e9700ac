#pragma once

#include <vector>

#include "HostMessage.h"
#include "OdDbObjectId.h"
#include "OdResBuf.h"
#include "OdResult.h"
#include "OdSmartPtr.h"
#include "OdString.h"

class OdDbDatabase;
class HostApDocManager;
class HostEdInputContextReactor;

// How a drawing read for reference may be shared with other readers and writers of its file.
enum HostShareMode : int {
  kHostShareDenyReadWrite = 16,
  kHostShareDenyWrite = 32,
  kHostShareDenyNone = 64,  // others may read and write the file meanwhile
};

// What the host application offers a module: reached through get_host_funcptr(0)
// (HostEntryPoints.h). Every operation runs on the host's one thread. Texts are Unicode;
// pointers returned are owned by the host unless a smart pointer is returned.
class HostServices {
 public:
  virtual ~HostServices() = default;

  // ---- drawings
  // Reads a drawing file into a database that is not a document (a standards file, say).
  // `convertCodePage` and `partialLoad` ask for conversions this host does not make (texts are
  // always decoded to Unicode; drawings are always read whole); `shareMode` is a
  // HostShareMode and is advisory here. Returns null, after one line on the command line
  // naming the file and the reason, when the file cannot be read.
  virtual OdSmartPtr<OdDbDatabase> readDrawingFile(const OdString& path, bool convertCodePage,
                                                   bool partialLoad, int shareMode) = 0;
  // The current document's database, or null when no document is open.
  virtual OdDbDatabase* currentDatabase() = 0;
  // The document manager (also get_host_funcptr(2)); never null.
  virtual HostApDocManager* docManager() = 0;
  // Highlights `ids` in the view of the document that holds `db`, replacing what was
  // highlighted (an empty list clears it); ids that are not entities of its model space are
  // ignored. With `zoom` the view also zooms to them. False, doing nothing, when the host has no
  // view of that drawing (a host without a screen, a drawing read for reference).
  virtual bool highlightObjects(OdDbDatabase* db, const OdDbObjectIdArray& ids, bool zoom) = 0;

  // ---- command line
  // Submits command-line text; "CHECKSTANDARDS " with its trailing blank runs that command
  // once the current command (if any) has completed. See HostCommandLine.
  virtual void sendCommand(const OdString& text) = 0;
  // Writes text to the command line (add "\n" to end the line).
  virtual void cmdPrint(const OdString& text) = 0;
  // printf-style output to the command line; %ls takes a wide text, %s a narrow one.
  void cmdPrintf(const wchar_t* format, ...);
  // Asks for a word of input, showing `prompt`: the next word submitted to the command line
  // (a script's next word) or, when there is none and a person sits at the command line, the
  // first word of the line they enter (the rest answers the prompts that follow). False when
  // there is none or the person cancels or enters an empty line, which a command treats as
  // cancel.
  virtual bool getString(const OdString& prompt, OdString& answer) = 0;
  // Input-context reactors, not owned; told after each command (see
  // HostEdInputContextReactor). Adding one twice keeps one entry.
  virtual void addInputContextReactor(HostEdInputContextReactor* reactor) = 0;
  virtual void removeInputContextReactor(HostEdInputContextReactor* reactor) = 0;

  // ---- messages
  // Shows a message box and returns the answer (HostAnswer).
  virtual int messageBox(const OdString& text, const OdString& caption, HostButtons buttons,
                         HostIcon icon) = 0;
  // Shows a task dialog and returns the id of the chosen button, or kHostCancel.
  virtual int taskDialog(const HostTaskDialog& dialog) = 0;

  // ---- system variables (of the current document; see HostSysVars)
  // A new buffer with the value, or null when no document is open or the name is unknown.
  virtual OdResBufPtr getSysVar(const OdString& name) = 0;
  // eOk, or the reason it was not set: eNullPtr when no document is open, and the codes of
  // HostSysVars::set.
  virtual OdResult setSysVar(const OdString& name, const OdResBuf* value) = 0;

  // ---- texts, help, files, user
  // The interface text in the user's language (itself when there is no translation).
  virtual OdString translate(const OdString& text) = 0;
  // Writes a real as the drawing shows lengths, in `unitMode` 1 (scientific) or 2 (decimal),
  // with `precision` places after the point, 0-8; -1 takes the current drawing's $LUPREC
  // (4 with no drawing open). Returns eOk with `text` set, or eInvalidInput (`text` left as
  // it was) for another mode, a precision outside -1..8, or a value that is not finite.
  virtual OdResult formatReal(double value, int unitMode, int precision, OdString& text) = 0;
  // Shows the help page of a topic; false, with a line on the command line, when there is no
  // such page or it cannot be shown.
  virtual bool showHelp(const OdString& topic) = 0;
  // True when the path names an existing file (not a folder).
  virtual bool fileExists(const OdString& path) = 0;
  // The last component of a path, after the last '/' or '\'.
  virtual OdString fileNameOf(const OdString& path) = 0;
  // The folders searched for support files (standards drawings named by a relative path,
  // say) after the folder of the drawing that names them, in search order; empty when none
  // are set. Each is an absolute path as the user gave it; folders that do not exist are
  // listed all the same.
  virtual std::vector<OdString> supportFolders() = 0;
  // The login name of the user.
  virtual OdString loginName() = 0;
};
