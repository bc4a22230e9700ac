#include "HostDocumentSave.h"

#include <filesystem>
#include <system_error>

#include "HostApplication.h"
#include "HostFrontend.h"
#include "HostPaths.h"
#include "OdError.h"
#include "OdFileStamp.h"

namespace {

// The file a path leads to, spelt as the document manager spells its documents' files.
OdString canonical(const OdString& path) {
  std::error_code ec;
  std::filesystem::path full = std::filesystem::weakly_canonical(HostPaths::toPath(path), ec);
  return ec ? path : OdString::fromUtf8(full.string());
}

// Whether the file in state `now` may hold other content than in state `then`: another file,
// or the same one written since. A change of its permissions alone (made read-only) is none.
bool contentChanged(const OdFileStamp& then, const OdFileStamp& now) {
  return then.device != now.device || then.inode != now.inode || then.size != now.size ||
         then.modified.tv_sec != now.modified.tv_sec ||
         then.modified.tv_nsec != now.modified.tv_nsec;
}

}  // namespace

bool hostSaveDocument(HostDocument* doc, const OdString& path, std::optional<bool> binary,
                      const wchar_t* command) {
  HostApplication& app = HostApplication::running();
  if (!doc || !doc->isOpen()) {
    app.cmdPrintf(L"%ls: no document is open\n", command);
    return false;
  }
  OdString target = path;
  if (target.isEmpty() && doc->isUntitled() && !app.getString(L"Save drawing as: ", target))
    return false;
  target = target.isEmpty() ? doc->fileName() : canonical(target);

  OdAtomicFile::Options options;
  const std::optional<OdFileStamp> now = OdFileStamp::ofTarget(HostPaths::toPath(target));
  if (now && target == doc->fileName() && doc->fileStamp() &&
      contentChanged(*doc->fileStamp(), *now)) {
    HostMessageBox box{doc->title() +
                           L" was changed on disk since it was opened.\n"
                           L"Replace it with this drawing?",
                       L"Save", HostButtons::kYesNo, HostIcon::kWarning, kHostNo};
    if (app.front().showMessageBox(box) != kHostYes) {
      app.cmdPrintf(L"%ls: %ls was left as it is on disk; the drawing was not saved\n", command,
                    doc->title().c_str());
      return false;
    }
  }
  // Whatever was examined is what may be replaced, question or not.
  if (now) options.expected = now;
  try {
    app.documents().saveDocument(doc, target, options, binary);
  } catch (const OdError& e) {
    app.cmdPrintf(L"%ls: cannot save %ls: %ls\n", command, doc->title().c_str(),
                  e.description().c_str());
    return false;
  }
  return true;
}
