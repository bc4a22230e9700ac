#include "FileKind.h"

#include <system_error>

namespace stcheck {

const char* fileKindName(std::filesystem::file_type type) {
  using std::filesystem::file_type;
  switch (type) {
    case file_type::regular:
      return nullptr;
    case file_type::directory:
      return "a folder";
    case file_type::fifo:
      return "a FIFO";
    case file_type::socket:
      return "a socket";
    case file_type::character:
      return "a character device";
    case file_type::block:
      return "a block device";
    default:
      return "an unknown kind of file";
  }
}

std::string standardsFileProblem(const std::string& path) {
  std::error_code ec;
  const auto status = std::filesystem::status(path, ec);
  if (ec || !std::filesystem::exists(status)) return "standards file " + path + " not found";
  const std::filesystem::file_type type = status.type();
  if (type == std::filesystem::file_type::directory)
    return "standards file " + path + " is a folder, not a standards drawing";
  if (const char* kind = fileKindName(type))
    return "standards file " + path + " is not a regular file (" + kind +
           "), not a standards drawing";
  return {};
}

}  // namespace stcheck
