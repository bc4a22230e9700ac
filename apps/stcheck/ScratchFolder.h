#pragma once

#include <filesystem>

namespace stcheck {

// A private folder under the system's temporary folder for the files worker processes hand
// back ("stcheck-jobs-XXXXXX"). It is removed with everything in it when the object goes, and
// by the stop handler when the run is stopped by a signal; it is held locked while it is in
// use, so that removeStale can tell the leftover of a killed run from a folder in use.
class ScratchFolder {
 public:
  // Makes the folder; throws OdError(eFileWriteError) naming the place and the reason.
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

  // Removes what runs of this user that were killed left in the temporary folder: scratch
  // folders nobody holds, and the configuration copies that older versions of stcheck made
  // there ("stcheck-XXXXXX" holding only "config.json"). Never throws.
  static void removeStale();

 private:
  std::filesystem::path path_;
  int lock_ = -1;
  int registration_ = -1;
};

}  // namespace stcheck
