#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "DxfTagSink.h"

// A large synthetic drawing for load and save benchmarks: many layers, linetypes, text
// styles, dimension styles and blocks, a model space of several kinds of entities (some with
// extended data), and in R2018 a tree of dictionaries holding xrecords of every value type.
//
// Two versions: R2018 (AC1032, UTF-8 text) and R12 (AC1009) in code-page form: ANSI_1252 bytes
// for Western European text and \U+XXXX escapes for everything outside that code page. The
// content depends only on the options (a fixed random start), so every run writes the same file.
class BenchDrawing {
 public:
  struct Options {
    bool r12 = false;
    std::size_t entities = 250000;  // in model space
    std::size_t layers = 400;
    std::size_t linetypes = 60;
    std::size_t textStyles = 40;
    std::size_t blocks = 300;
    std::size_t xrecords = 5000;  // R2018 only: R12 has no objects section
  };

  explicit BenchDrawing(Options options);

  // Writes the whole drawing; throws what the sink throws.
  void write(DxfTagSink& sink);

 private:
  void header();
  void tables();
  void tableHead(std::string_view name, std::uint64_t handle, std::size_t count);
  void recordHead(std::string_view type, std::uint64_t table, std::string_view subclass,
                  const std::string& name, int handleCode = 5);
  void blocks();
  void entities();
  void entity(std::uint64_t owner, std::size_t index);
  void entityHead(std::string_view type, std::uint64_t owner, std::string_view subclass);
  void objects();
  void xrecord(std::uint64_t handle, std::uint64_t owner, std::size_t index);

  // Text in the file's encoding: UTF-8 for R2018; for R12, Latin-1 characters as ANSI_1252
  // bytes and the rest as \U+XXXX.
  std::string encode(std::u32string_view text) const;
  std::string layerName(std::size_t index) const;
  std::string linetypeName(std::size_t index) const;
  std::string styleName(std::size_t index) const;
  std::string blockName(std::size_t index) const;
  double coordinate();
  std::uint64_t nextHandle() { return handleSeed_++; }

  Options options_;
  DxfTagSink* sink_ = nullptr;
  std::mt19937_64 random_;
  std::uint64_t handleSeed_ = 0x100;

  // Handles of the fixed structure, given out before anything is written.
  struct Table {
    std::string name;
    std::uint64_t handle;
  };
  std::vector<Table> tables_;
  std::uint64_t modelSpaceRecord_ = 0;
  std::uint64_t paperSpaceRecord_ = 0;
  std::vector<std::uint64_t> blockRecords_;
  std::uint64_t rootDictionary_ = 0;
  std::uint64_t groupDictionary_ = 0;
  std::uint64_t layoutDictionary_ = 0;
  std::uint64_t dataDictionary_ = 0;
  std::uint64_t modelLayout_ = 0;
  std::uint64_t paperLayout_ = 0;
};
