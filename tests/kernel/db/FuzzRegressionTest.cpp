// Inputs the DXF fuzzer found faults with, kept in fuzz/regressions: each must now load or be
// rejected with OdError, and pass the same write-back and conversion checks the fuzzer makes.

#include <gtest/gtest.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "../../../fuzz/DxfRoundTripCheck.h"

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> keptInputs() {
  std::vector<fs::path> inputs;
  const fs::path dir = fs::path(STAUDIT_SOURCE_DIR) / "fuzz" / "regressions";
  if (!fs::is_directory(dir)) return inputs;
  for (const auto& entry : fs::directory_iterator(dir)) {
    // The folder's notes describe the inputs; every other file is one.
    if (entry.is_regular_file() && entry.path().extension() != ".md")
      inputs.push_back(entry.path());
  }
  std::sort(inputs.begin(), inputs.end());
  return inputs;
}

TEST(DxfFuzzRegression, EveryKeptInputLoadsOrFailsCleanlyAndRoundTrips) {
  const auto inputs = keptInputs();
  if (inputs.empty())
    GTEST_SKIP() << "no kept fuzzer inputs in " STAUDIT_SOURCE_DIR "/fuzz/regressions";
  for (const fs::path& path : inputs) {
    SCOPED_TRACE(path.filename().string());
    std::ifstream in(path, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(in), {});
    try {
      EXPECT_EQ(DxfRoundTripCheck::check(bytes), "");
    } catch (const std::exception& e) {
      ADD_FAILURE() << "threw something other than OdError: " << e.what();
    }
  }
}

}  // namespace
