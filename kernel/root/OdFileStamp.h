#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <filesystem>
#include <optional>

// What tells one state of a file from another, and the attributes a file that replaces it
// should keep: taken when a file is read, compared before it is written over.
struct OdFileStamp {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  timespec modified{};  // content change
  timespec changed{};   // content or attribute change
  uid_t owner = 0;
  gid_t group = 0;
  mode_t mode = 0;  // type and permission bits, as stat gives them

  // The file at `path` itself (a symbolic link is not followed); nullopt when nothing is
  // there or it cannot be examined.
  static std::optional<OdFileStamp> of(const std::filesystem::path& path);
  // The open file `fd`; nullopt when it cannot be examined.
  static std::optional<OdFileStamp> ofOpen(int fd);
  // The file a path leads to, following links; nullopt when there is none.
  static std::optional<OdFileStamp> ofTarget(const std::filesystem::path& path);

  // What a file of `mode` is when it is not a regular file, for messages: "a folder", "a
  // FIFO", "a character device", ...; null for a regular file. Only regular files are read
  // as drawings: a FIFO could block and a device never end.
  static const char* kindOf(mode_t mode);

  bool isRegularFile() const { return S_ISREG(mode); }
  bool isLink() const { return S_ISLNK(mode); }
  // The same file in the same state: same inode, size and change times. A file rewritten in
  // place or replaced by another one compares unequal.
  bool sameState(const OdFileStamp& other) const;
};
