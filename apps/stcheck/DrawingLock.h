#pragma once

#include <filesystem>

#include "OdFileStamp.h"

namespace stcheck {

// Holds a drawing against other stcheck runs from before it is read until it is written back,
// so that two runs fixing one drawing take turns: the second reads what the first wrote, and
// keeps that as its backup. The lock (flock) binds cooperating runs only; a program that
// ignores it is caught by the state check instead: the state taken when the lock was won is
// what the write requires the file to still be in.
class DrawingLock {
 public:
  // Waits for the drawing (saying so on standard error when another run holds it); throws OdError
  // naming the drawing when it cannot be opened or is not a regular file. A link is not followed: a
  // drawing that is a link is not fixed.
  explicit DrawingLock(const std::filesystem::path& drawing);
  ~DrawingLock();
  DrawingLock(const DrawingLock&) = delete;
  DrawingLock& operator=(const DrawingLock&) = delete;

  // The drawing's state when the lock was won.
  const OdFileStamp& stamp() const { return stamp_; }
  // True while the file at the drawing's name is the locked one, in the state of stamp().
  bool unchanged() const;

 private:
  std::filesystem::path drawing_;
  OdFileStamp stamp_;
  int fd_ = -1;
};

}  // namespace stcheck
