// Loads one DXF file and reports, as one line of JSON, how long that took and the process's
// resident-memory high-water mark before and after, so that peak memory can be compared with
// the file size in a process that does nothing else.
//
//   dxf_load_probe [--database] FILE
//
// With --database the file is loaded into a full OdDbDatabase, else into the file layer's
// document only.

#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <filesystem>

#include <cstring>

#include "DxfReader.h"
#include "OdDbDatabase.h"
#include "OdError.h"

namespace {

long peakResidentKb() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;  // kilobytes on Linux
}

}  // namespace

int main(int argc, char** argv) {
  const bool database = argc == 3 && std::strcmp(argv[1], "--database") == 0;
  if (argc != 2 && !database) {
    std::fprintf(stderr, "usage: dxf_load_probe [--database] FILE\n");
    return 2;
  }
  const char* path = argv[argc - 1];
  const long baseline = peakResidentKb();
  const auto start = std::chrono::steady_clock::now();
  std::size_t objects = 0;
  try {
    if (database) {
      OdDbDatabasePtr db = OdDbDatabase::readFile(path);
      objects = db->numObjects();
    } else {
      auto doc = DxfReader::readFile(path);
      doc->forEachObject([&](const DxfObject&) { ++objects; });
    }
  } catch (const OdError& e) {
    std::fprintf(stderr, "dxf_load_probe: %s\n", e.what());
    return 1;
  }
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  std::printf(
      "{\"file\": \"%s\", \"bytes\": %ju, \"objects\": %zu, \"load_seconds\": %.6f, "
      "\"baseline_rss_kb\": %ld, \"peak_rss_kb\": %ld}\n",
      std::filesystem::path(path).filename().c_str(),
      static_cast<std::uintmax_t>(std::filesystem::file_size(path)), objects, seconds, baseline,
      peakResidentKb());
  return 0;
}
