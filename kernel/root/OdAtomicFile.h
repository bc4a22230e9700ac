#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "OdFileStamp.h"

// Writes a file so that whoever looks at it, at any moment and after any failure, finds
// either the old file whole or the new file whole.
//
// The content goes to a new temporary file in the target's folder (created exclusively, so
// no link is ever followed), is flushed to disk, given the owner, group and permissions it
// should have, and only then renamed over the target; the folder is flushed after. A link
// at the target is replaced, never written through. Until commit succeeds the target is not
// touched, and a writer that goes away without committing removes its temporary file. The
// temporary file is registered with OdTempFiles, so a signal handler can remove it, and is
// held locked while it is written, so removeStale can tell a dead writer's leftover from a
// live one's.
//
// Temporary names are "." + the target's name (shortened to fit any file-name limit) + "." +
// six random characters + ".partial".
//
// A target that is a stream rather than a file (a character device such as /dev/null or a
// terminal, a FIFO, or a link to one such as /dev/stdout) is written straight through, since
// replacing it would put a regular file where the device or pipe was; commit then only
// closes it. Other kinds of file (a folder, a socket, a block device) are refused.
//
// Every failure throws OdError(eFileWriteError) naming the target and the system's reason
// ("No space left on device", "Permission denied", ...).
class OdAtomicFile {
 public:
  struct Options {
    // When set, the file now at the target must still be in this state (see
    // OdFileStamp::sameState) when the new one is put in its place; commit refuses otherwise.
    std::optional<OdFileStamp> expected;
    // Owner, group and permissions for the new file. When unset: those of the regular file
    // being replaced, or for a new file the process's owner and newFileMode.
    std::optional<OdFileStamp> attributes;
    // Permissions of a file where there was none; unset: 0666 less the umask.
    std::optional<mode_t> newFileMode;
    // Called after the new file is complete and the target found as expected, just before
    // the rename; what it throws stops the commit (the target is then untouched). For work
    // that must happen only when the write will happen, such as putting a backup in place.
    std::function<void()> beforeRename;
  };

  // Creates the temporary file. Throws when it cannot be created, or when the file at the
  // target is one the user may not write (read-only, or on a read-only disk).
  explicit OdAtomicFile(std::filesystem::path target, Options options = {});
  // Removes the temporary file unless committed.
  ~OdAtomicFile();
  OdAtomicFile(const OdAtomicFile&) = delete;
  OdAtomicFile& operator=(const OdAtomicFile&) = delete;

  // Whether the target is a stream written straight through (see above).
  bool isStream() const { return stream_; }
  // The open temporary file (or stream), for writers that write themselves; valid until
  // commit.
  int descriptor() const { return fd_; }
  const std::filesystem::path& target() const { return target_; }

  // Appends bytes to the temporary file.
  void write(std::string_view bytes);
  // Flushes the content to disk and gives the file its owner, group and permissions. Throws
  // when the owner or group cannot be kept (another user's file, for a process that may not
  // give files away). commit calls it when it was not called.
  void prepare();
  // Puts the new file in place (see Options); afterwards the object holds nothing.
  void commit();

  // Why a regular file at `target` may not be replaced ("it is read-only", "it cannot be
  // written (Read-only file system)"); empty when it may, or when there is none. Never throws.
  static std::string whyNotReplaceable(const std::filesystem::path& target);

  // Removes what writers of this user that died left in `folder`: temporary files of this
  // class that no live writer holds and that were last written more than `minAge` ago.
  // Never throws; returns how many files it removed.
  static std::size_t removeStale(const std::filesystem::path& folder,
                                 std::chrono::seconds minAge = std::chrono::seconds(60));

 private:
  // Throws for a failed system call; `error` is its errno.
  [[noreturn]] void fail(int error, const std::string& what) const;
  // Opens a target that is a device or a FIFO for writing straight through; false for a
  // regular file or none. Throws for another kind of file.
  bool openStream();
  void discard() noexcept;

  std::filesystem::path target_;
  Options options_;
  std::string temp_;
  int fd_ = -1;
  int registration_ = -1;
  bool prepared_ = false;
  bool stream_ = false;  // writing straight to a device or FIFO
};
