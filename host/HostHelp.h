#pragma once

#include <filesystem>

#include "OdString.h"

class HostFrontend;

// The help service: a topic names a page of the help folder, which the front shows.
//
// The help folder is the environment variable STAUDIT_HELP_DIR when set, else
// "../share/standards-audit/help" beside the executable; setFolder overrides both.
// A topic "checkstandards" is the page "<folder>/checkstandards.html"; a topic may carry an
// anchor ("settings#notifications"). An empty topic, or one that would leave the folder, is
// the page "index.html".
class HostHelp {
 public:
  HostHelp();
  void setFolder(std::filesystem::path folder) { folder_ = std::move(folder); }
  const std::filesystem::path& folder() const noexcept { return folder_; }

  // The page of a topic, as a file: URL.
  OdString pageFor(const OdString& topic) const;
  // Asks `front` to show the page of `topic`; false when the page does not exist or the
  // front cannot show it.
  bool show(const OdString& topic, HostFrontend& front) const;

 private:
  std::filesystem::path fileFor(const OdString& topic, std::string* anchor) const;
  std::filesystem::path folder_;
};
