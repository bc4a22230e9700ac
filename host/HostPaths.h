#pragma once

#include <filesystem>

#include "OdString.h"

// File and path helpers of the host, for paths as modules keep them (which may come from
// drawings made elsewhere and use '\' as separator).
class HostPaths {
 public:
  // True when `path` names an existing file (not a folder); false for an empty path.
  static bool fileExists(const OdString& path);
  // The last component of a path, after the last '/' or '\' ("C:\std\a.dws" gives "a.dws");
  // the whole text when it has no separator.
  static OdString fileNameOf(const OdString& path);
  // The folder of the running executable; empty when it cannot be found.
  static std::filesystem::path executableDir();
  // A path for the file system from a host text.
  static std::filesystem::path toPath(const OdString& path) { return path.toUtf8(); }
};
