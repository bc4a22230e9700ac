#include "DrawingFinder.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <optional>
#include <set>
#include <system_error>

#include "OdFileStamp.h"

namespace stcheck {

namespace {

bool isDrawingFile(const std::filesystem::path& path) {
  std::string ext = path.extension().string();
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return ext == ".dxf";
}

}  // namespace

DrawingFinder::Found DrawingFinder::find(const std::vector<std::string>& paths) {
  Found found;
  std::set<std::filesystem::path> seen;
  auto add = [&](const std::filesystem::path& p) {
    std::error_code ec;
    std::filesystem::path key = std::filesystem::weakly_canonical(p, ec);
    if (ec) key = p;
    if (seen.insert(key).second) found.drawings.push_back(p);
  };
  for (const std::string& arg : paths) {
    std::filesystem::path path(arg);
    std::error_code ec;
    const std::optional<OdFileStamp> file = OdFileStamp::ofTarget(path);
    if (!file) {
      found.missing.emplace_back(arg, "no such file or folder");
    } else if (S_ISDIR(file->mode)) {
      std::vector<std::filesystem::path> inFolder;
      auto options = std::filesystem::directory_options::skip_permission_denied;
      for (auto it = std::filesystem::recursive_directory_iterator(path, options, ec);
           !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec)) {
        if (it->is_regular_file(ec) && isDrawingFile(it->path())) inFolder.push_back(it->path());
      }
      if (ec) {
        found.missing.emplace_back(arg, "cannot search the folder: " + ec.message());
        continue;
      }
      std::sort(inFolder.begin(), inFolder.end());
      for (const auto& p : inFolder) add(p);
    } else if (const char* kind = OdFileStamp::kindOf(file->mode)) {
      // Reading a FIFO or a device could block or never end; only regular files are drawings.
      found.missing.emplace_back(
          arg, std::string("is not a regular file (") + kind + "), not a drawing");
    } else {
      add(path);
    }
  }
  return found;
}

}  // namespace stcheck
