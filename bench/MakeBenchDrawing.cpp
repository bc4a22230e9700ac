// Writes a large synthetic drawing for the load and save benchmarks (see BenchDrawing.h).
//
//   make_bench_drawing OUTPUT [--r12] [--binary] [--entities N]

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <filesystem>

#include "BenchDrawing.h"
#include "DxfTagSink.h"

int main(int argc, char** argv) {
  CLI::App app("Writes a large synthetic DXF drawing for benchmarks", "make_bench_drawing");
  std::string output;
  bool r12 = false;
  bool binary = false;
  BenchDrawing::Options options;
  app.add_option("output", output, "the DXF file to write")->required();
  app.add_flag("--r12", r12, "R12 (AC1009) in ANSI_1252 code-page form; default R2018");
  app.add_flag("--binary", binary, "binary DXF; default ASCII");
  app.add_option("--entities", options.entities, "entities in model space")
      ->check(CLI::PositiveNumber);
  CLI11_PARSE(app, argc, argv);

  options.r12 = r12;
  // R12 files are written as older programs wrote them: CR LF lines, 1-byte binary codes.
  DxfTagSink::Layout layout;
  layout.binary = binary;
  layout.crlf = r12;
  layout.twoByteCodes = !r12;
  try {
    DxfTagSink sink(output, layout);
    BenchDrawing(options).write(sink);
    sink.finish();
    std::printf("%s: %.1f MB\n", output.c_str(), static_cast<double>(sink.bytesWritten()) / 1e6);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "make_bench_drawing: %s\n", e.what());
    std::error_code ignored;
    std::filesystem::remove(output, ignored);  // never leave half a drawing behind
    return 1;
  }
  return 0;
}
