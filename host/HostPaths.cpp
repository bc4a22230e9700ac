#include "HostPaths.h"

#include <system_error>

namespace fs = std::filesystem;

bool HostPaths::fileExists(const OdString& path) {
  if (path.isEmpty()) return false;
  std::error_code ec;
  fs::file_status status = fs::status(toPath(path), ec);
  return !ec && fs::exists(status) && !fs::is_directory(status);
}

OdString HostPaths::fileNameOf(const OdString& path) {
  const std::wstring& text = path.str();
  std::size_t sep = text.find_last_of(L"/\\");
  return sep == std::wstring::npos ? path : OdString(text.substr(sep + 1));
}

fs::path HostPaths::executableDir() {
  std::error_code ec;
  fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  return ec ? fs::path() : exe.parent_path();
}
