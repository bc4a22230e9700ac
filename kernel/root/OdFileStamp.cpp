#include "OdFileStamp.h"

namespace {

OdFileStamp fromStat(const struct stat& st) {
  OdFileStamp stamp;
  stamp.device = st.st_dev;
  stamp.inode = st.st_ino;
  stamp.size = st.st_size;
  stamp.modified = st.st_mtim;
  stamp.changed = st.st_ctim;
  stamp.owner = st.st_uid;
  stamp.group = st.st_gid;
  stamp.mode = st.st_mode;
  return stamp;
}

bool sameTime(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

}  // namespace

std::optional<OdFileStamp> OdFileStamp::of(const std::filesystem::path& path) {
  struct stat st {};
  if (::lstat(path.c_str(), &st) != 0) return std::nullopt;
  return fromStat(st);
}

std::optional<OdFileStamp> OdFileStamp::ofOpen(int fd) {
  struct stat st {};
  if (::fstat(fd, &st) != 0) return std::nullopt;
  return fromStat(st);
}

std::optional<OdFileStamp> OdFileStamp::ofTarget(const std::filesystem::path& path) {
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) return std::nullopt;
  return fromStat(st);
}

const char* OdFileStamp::kindOf(mode_t mode) {
  if (S_ISREG(mode)) return nullptr;
  if (S_ISDIR(mode)) return "a folder";
  if (S_ISFIFO(mode)) return "a FIFO";
  if (S_ISSOCK(mode)) return "a socket";
  if (S_ISCHR(mode)) return "a character device";
  if (S_ISBLK(mode)) return "a block device";
  return "an unknown kind of file";
}

bool OdFileStamp::sameState(const OdFileStamp& other) const {
  return device == other.device && inode == other.inode && size == other.size &&
         sameTime(modified, other.modified) && sameTime(changed, other.changed);
}
