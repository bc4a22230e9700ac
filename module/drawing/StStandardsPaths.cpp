#include "StStandardsPaths.h"

#include <cwctype>
#include <filesystem>
#include <system_error>
#include <vector>

#include "HostEntryPoints.h"
#include "HostServices.h"
#include "OdDbDatabase.h"

namespace st {

namespace {

namespace fs = std::filesystem;

fs::path toPath(const OdString& text) {
  return fs::path(text.toUtf8());
}

OdString fromPath(const fs::path& path) {
  return OdString::fromUtf8(path.lexically_normal().string());
}

bool isFile(const fs::path& path) {
  std::error_code ec;
  return fs::is_regular_file(path, ec);
}

}  // namespace

bool StStandardsPaths::isAbsolute(const OdString& path) {
  if (path.isEmpty()) return false;
  if (path[0] == L'/' || path[0] == L'\\') return true;
  return path.getLength() >= 2 && std::iswalpha(static_cast<wint_t>(path[0])) && path[1] == L':';
}

OdString StStandardsPaths::resolve(const OdString& stored, const OdDbDatabase* drawing) {
  if (stored.isEmpty() || isAbsolute(stored)) return stored;
  OdString relative = stored;
  relative.replace(L"\\", L"/");
  const fs::path name = toPath(relative);

  std::vector<fs::path> folders;
  fs::path drawingFolder;
  if (drawing) {
    const OdString file = drawing->getFilename();
    if (!file.isEmpty()) {
      std::error_code ec;
      drawingFolder = fs::absolute(toPath(file), ec).parent_path();
      folders.push_back(drawingFolder);
    }
  }
  try {
    if (HostServices* host = hostServices())
      for (const OdString& folder : host->supportFolders()) folders.push_back(toPath(folder));
  } catch (...) {
    // A host that cannot say where its support folders are has none to search.
  }
  for (const fs::path& folder : folders)
    if (isFile(folder / name)) return fromPath(folder / name);
  return drawingFolder.empty() ? stored : fromPath(drawingFolder / name);
}

OdArray<OdString> StStandardsPaths::resolveAll(const OdArray<OdString>& stored,
                                               const OdDbDatabase* drawing) {
  OdArray<OdString> found;
  for (const OdString& path : stored) found.push_back(resolve(path, drawing));
  return found;
}

}  // namespace st
