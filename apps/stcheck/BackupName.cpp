#include "BackupName.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <system_error>

namespace stcheck {

namespace fs = std::filesystem;

namespace {

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

fs::path shortForm(const fs::path& drawing) {
  fs::path bak = drawing;
  bak.replace_extension(".bak");
  return bak;
}

fs::path longForm(const fs::path& drawing) {
  fs::path bak = drawing;
  bak += ".bak";
  return bak;
}

}  // namespace

fs::path BackupName::of(const fs::path& drawing) {
  const fs::path name = drawing.filename();
  const fs::path shared = shortForm(drawing);
  if (shared.filename() == name) return longForm(drawing);
  // Another drawing of the same name in the folder would want the same backup.
  fs::path folder = drawing.parent_path();
  if (folder.empty()) folder = ".";
  std::error_code ec;
  for (auto it = fs::directory_iterator(folder, ec); !ec && it != fs::directory_iterator();
       it.increment(ec)) {
    const fs::path other = it->path().filename();
    if (other != name && other != shared.filename() && other.stem() == name.stem() &&
        isDrawingName(other) && !it->is_directory(ec))
      return longForm(drawing);
  }
  return shared;
}

bool BackupName::isDrawingName(const fs::path& name) {
  static const std::array<std::string, 4> kExtensions = {".dxf", ".dwg", ".dws", ".dwt"};
  const std::string ext = lower(name.extension().string());
  return std::find(kExtensions.begin(), kExtensions.end(), ext) != kExtensions.end();
}

bool BackupName::isBackupName(const fs::path& name) {
  return lower(name.extension().string()) == ".bak";
}

std::vector<fs::path> BackupName::candidates(const fs::path& drawing) {
  return {shortForm(drawing), longForm(drawing)};
}

}  // namespace stcheck
