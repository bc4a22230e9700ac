#pragma once

#include "OdString.h"
#include "StService.h"

namespace st {

// What the user interface shows about one standards file.
struct StFileInfo {
  bool exists = true;
  // The path asked about; when the file does not exist, followed by a line saying so.
  OdString path;
  // The file's last-modified date in the user's locale ("d MMMM yyyy"); empty when the file
  // is missing or its time cannot be read.
  OdString lastModified;
  // Not filled by the file-system service.
  OdString description;
  OdString version;
};

// Answers whether a standards file exists and when it was last modified.
class ST_EXPORT StFileSystemService : public StService {
 public:
  virtual StFileInfo getFileInfo(const OdString& path) = 0;
};

}  // namespace st
