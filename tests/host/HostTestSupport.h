#pragma once

// What the host tests share: a headless host whose configuration lives in a temporary
// folder, and real drawing files made by the kernel.

#include <filesystem>
#include <memory>
#include <string>

#include "HeadlessHost.h"
#include "OdDbDatabase.h"
#include "TestSupport.h"

namespace hosttest {

// A headless host, silent, with its configuration file in its own temporary folder.
struct QuietHost {
  testsupport::TempDir dir;
  HeadlessHost host{HeadlessHost::Options{dir.path() / "config.json", nullptr}};
};

// Writes a new drawing (the kernel's empty drawing) to `file` and returns its path.
inline std::filesystem::path writeDrawing(const std::filesystem::path& file) {
  OdDbDatabase::createEmpty()->writeFile(file);
  return file;
}

inline std::size_t count(const std::string& text, const std::string& what) {
  std::size_t n = 0;
  for (auto pos = text.find(what); pos != std::string::npos; pos = text.find(what, pos + 1)) ++n;
  return n;
}

}  // namespace hosttest
