#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace stcheck {

// Turns the PATH arguments of `stcheck check` into the drawings to check, in a stable order.
class DrawingFinder {
 public:
  struct Found {
    std::vector<std::filesystem::path> drawings;
    // Arguments that name nothing that exists, or something that is neither a regular file
    // nor a folder (a FIFO, a device), with the reason, each to be reported as a drawing that
    // could not be read.
    std::vector<std::pair<std::string, std::string>> missing;
  };

  // A file argument is taken as it is, whatever its extension. A folder is searched, with
  // its subfolders, for files ending in ".dxf" in any case; standards files (".dws") are not
  // drawings to check and are left out. Folders give their drawings sorted by path; a drawing
  // named twice is checked once.
  static Found find(const std::vector<std::string>& paths);
};

}  // namespace stcheck
