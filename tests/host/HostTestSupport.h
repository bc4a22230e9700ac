#pragma once

// What the host tests share: a headless host whose configuration lives in a temporary
// folder, and real drawing files made by the kernel.

#include <filesystem>
#include <memory>
#include <string>

#include "DrawingBuilders.h"
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

// Writes a plan to `file`: the linetype DASHED, layer Walls in red, the texts "a" and "b" on
// Walls and "c" on layer 0, in model space; returns its path.
inline std::filesystem::path writePlan(const std::filesystem::path& file) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  testsupport::addLinetype(*db, L"DASHED", L"Dashed __ __", {0.5, -0.25});
  testsupport::addLayer(*db, L"Walls", 1);
  testsupport::addText(*db, L"Walls", L"a");
  testsupport::addText(*db, L"Walls", L"b");
  testsupport::addText(*db, L"0", L"c");
  db->writeFile(file);
  return file;
}

inline std::size_t count(const std::string& text, const std::string& what) {
  std::size_t n = 0;
  for (auto pos = text.find(what); pos != std::string::npos; pos = text.find(what, pos + 1)) ++n;
  return n;
}

}  // namespace hosttest
