#include "DrawingLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "OdError.h"
#include "TerminalText.h"

namespace stcheck {

DrawingLock::DrawingLock(const std::filesystem::path& drawing) : drawing_(drawing) {
  // A run that held the lock before may have put a new file at the name; the lock of the file
  // it replaced holds nothing, so the name is opened again until the locked file is the one
  // the name leads to.
  for (;;) {
    fd_ = ::open(drawing.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd_ < 0) {
      const int error = errno;
      throw OdError(eFileAccessError, drawing.string() + ": cannot open it to write it: " +
                                          (error == ELOOP ? std::string("it is a symbolic link")
                                                          : std::string(std::strerror(error))));
    }
    std::optional<OdFileStamp> open = OdFileStamp::ofOpen(fd_);
    if (!open || !open->isRegularFile()) {
      ::close(fd_);
      fd_ = -1;
      throw OdError(eFileAccessError, drawing.string() + ": not a regular file");
    }
    if (::flock(fd_, LOCK_EX | LOCK_NB) != 0) {
      std::fprintf(stderr, "stcheck: %s is being written by another stcheck run; waiting for it\n",
                   terminalSafe(drawing.string()).c_str());
      while (::flock(fd_, LOCK_EX) != 0 && errno == EINTR) {
      }
    }
    std::optional<OdFileStamp> locked = OdFileStamp::ofOpen(fd_);
    std::optional<OdFileStamp> named = OdFileStamp::of(drawing);
    if (locked && named && named->device == locked->device && named->inode == locked->inode) {
      stamp_ = *locked;
      return;
    }
    ::close(fd_);
    fd_ = -1;
  }
}

DrawingLock::~DrawingLock() {
  if (fd_ >= 0) ::close(fd_);
}

bool DrawingLock::unchanged() const {
  std::optional<OdFileStamp> now = OdFileStamp::of(drawing_);
  return now && now->sameState(stamp_);
}

}  // namespace stcheck
