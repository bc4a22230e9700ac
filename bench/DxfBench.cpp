// Throughput of the DXF file layer on the drawings named on the command line:
//
//   dxf_bench [benchmark flags] FILE...
//
// For each file: Load (read and parse from the file), Save (an untouched document to a file,
// through the temporary-file-and-rename path, flushed to disk), SaveToMemory (the same bytes
// into a string), Convert (to the other of ASCII and binary, every tag re-encoded), and at
// the drawing-database level DbLoad (a full OdDbDatabase with its object ids and tables) and
// DbSave (that database written to a file).
// Throughput is reported as bytes_per_second of the input file. Saved files go to the
// current folder and are removed at the end.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "DxfReader.h"
#include "DxfWriter.h"
#include "OdDbDatabase.h"
#include "OdError.h"

namespace {

namespace fs = std::filesystem;

const fs::path kSavePath = "dxf_bench_save.dxf";

std::int64_t fileSize(const fs::path& path) {
  return static_cast<std::int64_t>(fs::file_size(path));
}

void load(benchmark::State& state, const fs::path& path) {
  for (auto _ : state) {
    auto doc = DxfReader::readFile(path);
    benchmark::DoNotOptimize(doc.get());
  }
  state.SetBytesProcessed(state.iterations() * fileSize(path));
}

void save(benchmark::State& state, const fs::path& path) {
  auto doc = DxfReader::readFile(path);
  DxfWriter writer(*doc);
  for (auto _ : state) writer.save(kSavePath);
  state.SetBytesProcessed(state.iterations() * fileSize(path));
}

void saveToMemory(benchmark::State& state, const fs::path& path) {
  auto doc = DxfReader::readFile(path);
  DxfWriter writer(*doc);
  for (auto _ : state) {
    std::string bytes = writer.toBytes();
    benchmark::DoNotOptimize(bytes.data());
  }
  state.SetBytesProcessed(state.iterations() * fileSize(path));
}

void convert(benchmark::State& state, const fs::path& path) {
  auto doc = DxfReader::readFile(path);
  DxfWriter writer(*doc,
                   doc->format() == DxfFormat::kAscii ? DxfFormat::kBinary : DxfFormat::kAscii);
  for (auto _ : state) {
    std::string bytes = writer.toBytes();
    benchmark::DoNotOptimize(bytes.data());
  }
  state.SetBytesProcessed(state.iterations() * fileSize(path));
}

void dbLoad(benchmark::State& state, const fs::path& path) {
  for (auto _ : state) {
    OdDbDatabasePtr db = OdDbDatabase::readFile(path);
    benchmark::DoNotOptimize(db.get());
  }
  state.SetBytesProcessed(state.iterations() * fileSize(path));
}

void dbSave(benchmark::State& state, const fs::path& path) {
  OdDbDatabasePtr db = OdDbDatabase::readFile(path);
  for (auto _ : state) db->writeFile(kSavePath);
  state.SetBytesProcessed(state.iterations() * fileSize(path));
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (argc < 2) {
    std::fprintf(stderr, "usage: dxf_bench [benchmark flags] FILE...\n");
    return 2;
  }
  std::vector<fs::path> files(argv + 1, argv + argc);
  for (const fs::path& path : files) {
    // A file that does not load is reported once, here, rather than by every benchmark.
    try {
      OdDbDatabase::readFile(path);
    } catch (const OdError& e) {
      std::fprintf(stderr, "dxf_bench: skipping %s: %s\n", path.c_str(), e.what());
      continue;
    }
    const std::string name = path.filename().string();
    using Function = void (*)(benchmark::State&, const fs::path&);
    for (auto [kind, function] : {std::pair<const char*, Function>{"Load", load},
                                  {"Save", save},
                                  {"SaveToMemory", saveToMemory},
                                  {"Convert", convert},
                                  {"DbLoad", dbLoad},
                                  {"DbSave", dbSave}}) {
      benchmark::RegisterBenchmark((std::string(kind) + "/" + name).c_str(), function, path)
          ->Unit(benchmark::kMillisecond)
          ->UseRealTime();
    }
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  std::error_code ignored;
  fs::remove(kSavePath, ignored);
  return 0;
}
