#include "FileKind.h"

#include <sys/stat.h>

#include "OdFileStamp.h"

namespace stcheck {

std::string standardsFileProblem(const std::string& path) {
  const std::optional<OdFileStamp> file = OdFileStamp::ofTarget(path);
  if (!file) return "standards file " + path + " not found";
  if (S_ISDIR(file->mode))
    return "standards file " + path + " is a folder, not a standards drawing";
  if (const char* kind = OdFileStamp::kindOf(file->mode))
    return "standards file " + path + " is not a regular file (" + kind +
           "), not a standards drawing";
  return {};
}

}  // namespace stcheck
