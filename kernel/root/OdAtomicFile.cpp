#include "OdAtomicFile.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>

#include "OdError.h"
#include "OdTempFiles.h"

namespace {

constexpr std::string_view kSuffix = ".partial";
// Room for the name within any file-name limit (255 bytes): "." + name + ".XXXXXX.partial".
constexpr std::size_t kNameBytes = 200;

std::string systemReason(int error) {
  return std::strerror(error);
}

// The first `limit` bytes of a UTF-8 name, not cutting a character in two.
std::string shortened(const std::string& name, std::size_t limit) {
  if (name.size() <= limit) return name;
  std::size_t cut = limit;
  while (cut > 0 && (static_cast<unsigned char>(name[cut]) & 0xC0) == 0x80) --cut;
  return name.substr(0, cut);
}

std::filesystem::path folderOf(const std::filesystem::path& target) {
  std::filesystem::path folder = target.parent_path();
  return folder.empty() ? std::filesystem::path(".") : folder;
}

void syncFolder(const std::filesystem::path& folder) {
  int dir = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir < 0) return;
  // A failure here loses nothing that was not safe before the rename.
  ::fsync(dir);
  ::close(dir);
}

bool isTemporaryName(const std::string& name) {
  // "." + at least one byte + ".XXXXXX" + ".partial"
  return name.size() > 1 + 1 + 7 + kSuffix.size() && name[0] == '.' &&
         name.compare(name.size() - kSuffix.size(), kSuffix.size(), kSuffix) == 0 &&
         name[name.size() - kSuffix.size() - 7] == '.';
}

}  // namespace

OdAtomicFile::OdAtomicFile(std::filesystem::path target, Options options)
    : target_(std::move(target)), options_(std::move(options)) {
  if (std::string refusal = whyNotReplaceable(target_); !refusal.empty())
    throw OdError(eFileWriteError, "cannot write " + target_.string() + ": " + refusal);
  if (openStream()) return;
  std::string pattern =
      (folderOf(target_) / ("." + shortened(target_.filename().string(), kNameBytes) + ".XXXXXX" +
                            std::string(kSuffix)))
          .string();
  // No signal may end the process between making the file and registering it, or its
  // handler would not know the file to remove.
  sigset_t all, before;
  sigfillset(&all);
  ::pthread_sigmask(SIG_BLOCK, &all, &before);
  fd_ = ::mkostemps(pattern.data(), static_cast<int>(kSuffix.size()), O_CLOEXEC);
  const int error = errno;
  if (fd_ >= 0) registration_ = OdTempFiles::add(pattern);
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  if (fd_ < 0) fail(error, "cannot create a temporary file in " + folderOf(target_).string());
  temp_ = pattern;
  // Held for the writer's life: a sweep that can lock the file knows its writer is gone.
  ::flock(fd_, LOCK_EX | LOCK_NB);
}

bool OdAtomicFile::openStream() {
  std::optional<OdFileStamp> at = OdFileStamp::ofTarget(target_);
  if (!at || at->isRegularFile()) return false;
  if (!S_ISCHR(at->mode) && !S_ISFIFO(at->mode))
    throw OdError(eFileWriteError, "cannot write " + target_.string() + ": it is " +
                                       OdFileStamp::kindOf(at->mode) + ", not a file");
  fd_ = ::open(target_.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
  if (fd_ < 0) {
    const int error = errno;
    fail(error, "");
  }
  // What was opened is what was examined: a stream, never a regular file put there since.
  std::optional<OdFileStamp> opened = OdFileStamp::ofOpen(fd_);
  if (!opened || (!S_ISCHR(opened->mode) && !S_ISFIFO(opened->mode))) {
    ::close(fd_);
    fd_ = -1;
    throw OdError(eFileWriteError,
                  "cannot write " + target_.string() + ": it changed while it was opened");
  }
  stream_ = true;
  return true;
}

OdAtomicFile::~OdAtomicFile() {
  discard();
}

void OdAtomicFile::discard() noexcept {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
  if (!temp_.empty()) ::unlink(temp_.c_str());
  temp_.clear();
  OdTempFiles::forget(registration_);
  registration_ = -1;
}

void OdAtomicFile::fail(int error, const std::string& what) const {
  throw OdError(eFileWriteError, "cannot write " + target_.string() + ": " +
                                     (what.empty() ? "" : what + ": ") + systemReason(error));
}

void OdAtomicFile::write(std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t n = ::write(fd_, bytes.data(), bytes.size());
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      const int error = errno;
      fail(error, "");
    }
    bytes.remove_prefix(static_cast<std::size_t>(n));
  }
}

void OdAtomicFile::prepare() {
  if (prepared_) return;
  if (stream_) {
    prepared_ = true;
    return;
  }
  if (::fsync(fd_) != 0) {
    const int error = errno;
    fail(error, "cannot flush " + temp_ + " to disk");
  }
  std::optional<OdFileStamp> from = options_.attributes;
  if (!from) {
    std::optional<OdFileStamp> existing = OdFileStamp::of(target_);
    if (existing && existing->isRegularFile()) from = existing;
  }
  mode_t mode = 0;
  if (from) {
    std::optional<OdFileStamp> mine = OdFileStamp::ofOpen(fd_);
    if (mine && (mine->owner != from->owner || mine->group != from->group) &&
        ::fchown(fd_, from->owner, from->group) != 0) {
      const int error = errno;
      fail(error, "cannot keep its owner " + std::to_string(from->owner) + " and group " +
                      std::to_string(from->group));
    }
    mode = from->mode & 07777;
  } else if (options_.newFileMode) {
    mode = *options_.newFileMode;
  } else {
    mode_t mask = ::umask(0);
    ::umask(mask);
    mode = 0666 & ~mask;
  }
  if (::fchmod(fd_, mode) != 0) {
    const int error = errno;
    fail(error, "cannot set the permissions of " + temp_);
  }
  prepared_ = true;
}

void OdAtomicFile::commit() {
  prepare();
  if (stream_) {
    // A stream has no state to compare and nothing to rename: what was written is delivered.
    if (options_.beforeRename) options_.beforeRename();
    const int fd = fd_;
    fd_ = -1;
    if (::close(fd) != 0 && errno != EINTR) {
      const int error = errno;
      fail(error, "");
    }
    return;
  }
  if (options_.expected) {
    std::optional<OdFileStamp> now = OdFileStamp::of(target_);
    if (!now || !now->sameState(*options_.expected))
      throw OdError(eFileWriteError, "cannot write " + target_.string() +
                                         ": it changed on disk since it was read (another "
                                         "program wrote it); it was left as it is");
  }
  if (options_.beforeRename) options_.beforeRename();
  // Closing first would drop the lock before the name is gone; the rename comes first.
  if (::rename(temp_.c_str(), target_.c_str()) != 0) {
    const int error = errno;
    fail(error, "cannot replace the file");
  }
  temp_.clear();
  discard();
  syncFolder(folderOf(target_));
}

std::string OdAtomicFile::whyNotReplaceable(const std::filesystem::path& target) {
  // As an editor does, a file the user may not write is not replaced, even where the folder
  // would allow it.
  std::optional<OdFileStamp> existing = OdFileStamp::of(target);
  if (!existing || !existing->isRegularFile()) return std::string();
  if ((existing->mode & 0222) == 0) return "it is read-only";
  if (::access(target.c_str(), W_OK) != 0) {
    const int error = errno;
    return "it cannot be written (" + systemReason(error) + ")";
  }
  return std::string();
}

std::size_t OdAtomicFile::removeStale(const std::filesystem::path& folder,
                                      std::chrono::seconds minAge) {
  std::size_t removed = 0;
  std::error_code ec;
  const std::time_t cutoff = std::time(nullptr) - static_cast<std::time_t>(minAge.count());
  for (auto it = std::filesystem::directory_iterator(folder, ec);
       !ec && it != std::filesystem::directory_iterator(); it.increment(ec)) {
    const std::string name = it->path().filename().string();
    if (!isTemporaryName(name)) continue;
    std::optional<OdFileStamp> stamp = OdFileStamp::of(it->path());
    if (!stamp || !stamp->isRegularFile() || stamp->owner != ::geteuid() ||
        stamp->modified.tv_sec > cutoff)
      continue;
    int fd = ::open(it->path().c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) continue;
    if (::flock(fd, LOCK_EX | LOCK_NB) == 0 && ::unlink(it->path().c_str()) == 0) ++removed;
    ::close(fd);
  }
  return removed;
}
