#pragma once

#include "StFileSystemService.h"

namespace st {

// The file-system service over the host's file-existence test and date formatting. Has no
// state.
class StFileSystemServiceImpl : public StFileSystemService {
 public:
  StFileSystemServiceImpl() = default;

  void init() override {}
  // A missing file: exists false, the path followed by "\n(File not found)" from the string
  // table. An existing file that cannot be opened or whose time cannot be read: exists true,
  // no date.
  StFileInfo getFileInfo(const OdString& path) override;
};

}  // namespace st
