#include "ScratchFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <string>
#include <system_error>
#include <vector>

#include "OdError.h"
#include "OdFileStamp.h"
#include "OdTempFiles.h"

namespace stcheck {

namespace fs = std::filesystem;

namespace {

constexpr const char* kPrefix = "stcheck-jobs-";

fs::path temporaryFolder() {
  std::error_code ec;
  fs::path folder = fs::temp_directory_path(ec);
  return ec ? fs::path("/tmp") : folder;
}

bool startsWith(const std::string& text, const std::string& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

// A folder an older stcheck made for its private configuration copy and left behind when it
// was killed: only its configuration (and that file's own temporary files) inside, and not
// touched for an hour.
bool isOldConfigurationCopy(const fs::path& folder, const OdFileStamp& stamp) {
  const std::string name = folder.filename().string();
  if (name.size() != std::string("stcheck-XXXXXX").size() || !startsWith(name, "stcheck-"))
    return false;
  if (stamp.modified.tv_sec > std::time(nullptr) - 3600) return false;
  std::error_code ec;
  for (auto it = fs::directory_iterator(folder, ec); !ec && it != fs::directory_iterator();
       it.increment(ec)) {
    if (!startsWith(it->path().filename().string(), "config.json")) return false;
  }
  return !ec;
}

}  // namespace

ScratchFolder::ScratchFolder() {
  std::string pattern = (temporaryFolder() / (std::string(kPrefix) + "XXXXXX")).string();
  if (!::mkdtemp(pattern.data())) {
    const int error = errno;
    throw OdError(eFileWriteError, "cannot make a folder for the worker processes in " +
                                       temporaryFolder().string() + ": " + std::strerror(error));
  }
  path_ = pattern;
  registration_ = OdTempFiles::add(path_.string(), true);
  lock_ = ::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (lock_ >= 0) ::flock(lock_, LOCK_EX | LOCK_NB);
}

ScratchFolder::~ScratchFolder() {
  std::error_code ec;
  fs::remove_all(path_, ec);
  OdTempFiles::forget(registration_);
  if (lock_ >= 0) ::close(lock_);
}

void ScratchFolder::removeStale() {
  std::error_code ec;
  std::vector<fs::path> stale;
  for (auto it = fs::directory_iterator(temporaryFolder(), ec);
       !ec && it != fs::directory_iterator(); it.increment(ec)) {
    const fs::path& folder = it->path();
    std::optional<OdFileStamp> stamp = OdFileStamp::of(folder);
    if (!stamp || !S_ISDIR(stamp->mode) || stamp->owner != ::geteuid()) continue;
    if (startsWith(folder.filename().string(), kPrefix)) {
      // A folder just made may not be locked yet.
      if (stamp->modified.tv_sec > std::time(nullptr) - 60) continue;
      int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
      if (fd < 0) continue;
      if (::flock(fd, LOCK_EX | LOCK_NB) == 0) stale.push_back(folder);
      ::close(fd);
    } else if (isOldConfigurationCopy(folder, *stamp)) {
      stale.push_back(folder);
    }
  }
  for (const fs::path& folder : stale) fs::remove_all(folder, ec);
}

}  // namespace stcheck
