#include "HostHelp.h"

#include <cstdlib>
#include <system_error>

#include "HostFrontend.h"
#include "HostPaths.h"

namespace fs = std::filesystem;

HostHelp::HostHelp() {
  if (const char* env = std::getenv("STAUDIT_HELP_DIR"); env && *env) {
    folder_ = env;
  } else if (fs::path exe = HostPaths::executableDir(); !exe.empty()) {
    folder_ = exe.parent_path() / "share" / "standards-audit" / "help";
  }
}

fs::path HostHelp::fileFor(const OdString& topic, std::string* anchor) const {
  std::string name = topic.toUtf8();
  std::size_t hash = name.find('#');
  if (hash != std::string::npos) {
    if (anchor) *anchor = name.substr(hash);
    name.resize(hash);
  }
  if (name.empty() || name.find('/') != std::string::npos || name.find('\\') != std::string::npos ||
      name.find("..") != std::string::npos) {
    name = "index";
    if (anchor) anchor->clear();
  }
  if (name.size() < 5 || name.compare(name.size() - 5, 5, ".html") != 0) name += ".html";
  return folder_ / name;
}

OdString HostHelp::pageFor(const OdString& topic) const {
  std::string anchor;
  fs::path file = fileFor(topic, &anchor);
  std::error_code ec;
  fs::path absolute = fs::absolute(file, ec);
  return OdString::fromUtf8("file://" + (ec ? file : absolute).string() + anchor);
}

bool HostHelp::show(const OdString& topic, HostFrontend& front) const {
  std::error_code ec;
  if (!fs::is_regular_file(fileFor(topic, nullptr), ec)) return false;
  return front.showHelpPage(pageFor(topic));
}
