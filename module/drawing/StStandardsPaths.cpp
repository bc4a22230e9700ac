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

OdArray<OdString> StStandardsPaths::placesLooked(const OdString& stored,
                                                 const OdDbDatabase* drawing) {
  OdArray<OdString> places;
  if (stored.isEmpty() || isAbsolute(stored)) {
    if (!stored.isEmpty()) places.push_back(stored);
    return places;
  }
  OdString relative = stored;
  relative.replace(L"\\", L"/");
  const fs::path name = toPath(relative);
  if (drawing) {
    const OdString file = drawing->getFilename();
    if (!file.isEmpty()) {
      std::error_code ec;
      places.push_back(fromPath(fs::absolute(toPath(file), ec).parent_path() / name));
    }
  }
  try {
    if (HostServices* host = hostServices())
      for (const OdString& folder : host->supportFolders())
        places.push_back(fromPath(toPath(folder) / name));
  } catch (...) {
    // A host that cannot say where its support folders are has none to search.
  }
  return places;
}

OdString StStandardsPaths::resolve(const OdString& stored, const OdDbDatabase* drawing) {
  if (stored.isEmpty() || isAbsolute(stored)) return stored;
  const OdArray<OdString> places = placesLooked(stored, drawing);
  for (const OdString& place : places)
    if (isFile(toPath(place))) return place;
  // Not found: where it was looked for first, when there is a drawing folder to name.
  const bool inDrawingFolder = drawing && !drawing->getFilename().isEmpty();
  return inDrawingFolder && !places.isEmpty() ? places[0] : stored;
}

OdArray<OdString> StStandardsPaths::resolveAll(const OdArray<OdString>& stored,
                                               const OdDbDatabase* drawing) {
  OdArray<OdString> found;
  for (const OdString& path : stored) found.push_back(resolve(path, drawing));
  return found;
}

}  // namespace st
