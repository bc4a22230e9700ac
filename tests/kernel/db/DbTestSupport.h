#pragma once

// Helpers of the drawing-database tests: reading a drawing of the corpus, comparing the
// objects of two saves, and asking ezdxf about a file we wrote.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "DxfReader.h"
#include "OdDbDatabase.h"
#include "TestSupport.h"

namespace dbtest {

inline std::filesystem::path corpusFile(const char* name) {
  auto dir = testsupport::corpusDir();
  return dir.empty() ? dir : dir / name;
}

using testsupport::ezdxf;

// The objects of two files, as lists of tags per object, that differ: pairs of (index of
// the object in file order, its type).
inline std::vector<std::string> differingObjects(const std::string& before,
                                                 const std::string& after) {
  auto a = DxfReader::readBuffer(before, "before");
  auto b = DxfReader::readBuffer(after, "after");
  std::vector<std::string> diffs;
  if (a->sectionCount() != b->sectionCount()) return {"section count"};
  for (std::size_t s = 0; s < a->sectionCount(); ++s) {
    const auto& x = a->section(s).objects();
    const auto& y = b->section(s).objects();
    if (x.size() != y.size()) {
      diffs.push_back(a->section(s).name() + " object count");
      continue;
    }
    for (std::size_t i = 0; i < x.size(); ++i) {
      bool same = x[i].size() == y[i].size();
      for (std::size_t t = 0; same && t < x[i].size(); ++t)
        same = x[i].code(t) == y[i].code(t) && x[i].rawValue(t) == y[i].rawValue(t);
      if (!same) diffs.push_back(std::string(x[i].type()) + " " + std::to_string(x[i].handle()));
    }
  }
  return diffs;
}

}  // namespace dbtest
