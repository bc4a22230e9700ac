#include "BenchDrawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace {

// Names and texts with characters from several scripts, so that both the code-page and the
// UTF-8 paths of a reader are exercised.
// The first three layer words are Latin-1.
constexpr std::array<std::u32string_view, 6> kLayerWords = {U"Wände", U"Größe",    U"Ø-Achsen",
                                                            U"Эскиз", U"Ελληνικά", U"平面图"};
constexpr std::array<std::u32string_view, 5> kTexts = {U"Raum 1.24 – Büro", U"Tür T30 ±0,00",
                                                       U"Ωμέγα 3×4", U"Лестница Л-2", U"断面 A–A"};

void appendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (c >> 6)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (c >> 12)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (c >> 18)));
    out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

std::string numbered(std::string_view prefix, std::size_t index) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "%04zu", index);
  return std::string(prefix) + digits;
}

}  // namespace

BenchDrawing::BenchDrawing(Options options) : options_(options), random_(20240601) {
  // Layer "0", the three fixed linetypes and "Standard" always exist.
  options_.layers = std::max<std::size_t>(options_.layers, 1);
  options_.linetypes = std::max<std::size_t>(options_.linetypes, 3);
  options_.textStyles = std::max<std::size_t>(options_.textStyles, 1);
  static constexpr std::array<std::string_view, 9> kR2018Tables = {
      "VPORT", "LTYPE", "LAYER", "STYLE", "VIEW", "UCS", "APPID", "DIMSTYLE", "BLOCK_RECORD"};
  for (std::size_t i = 0; i < kR2018Tables.size() - (options_.r12 ? 1 : 0); ++i)
    tables_.push_back({std::string(kR2018Tables[i]), nextHandle()});
  modelSpaceRecord_ = nextHandle();
  paperSpaceRecord_ = nextHandle();
  for (std::size_t i = 0; i < options_.blocks; ++i) blockRecords_.push_back(nextHandle());
  rootDictionary_ = nextHandle();
  groupDictionary_ = nextHandle();
  layoutDictionary_ = nextHandle();
  dataDictionary_ = nextHandle();
  modelLayout_ = nextHandle();
  paperLayout_ = nextHandle();
}

std::string BenchDrawing::encode(std::u32string_view text) const {
  std::string out;
  for (char32_t c : text) {
    if (!options_.r12) {
      appendUtf8(out, c);
    } else if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
      out.push_back(static_cast<char>(c));  // ANSI_1252 agrees with Latin-1 here
    } else {
      char escape[16];
      std::snprintf(escape, sizeof escape, "\\U+%04X", static_cast<unsigned>(c));
      out += escape;
    }
  }
  return out;
}

std::string BenchDrawing::layerName(std::size_t index) const {
  if (index == 0) return "0";
  // R12 names keep to Latin-1: escaped names on layers trip up other readers of R12 files.
  const std::size_t words = options_.r12 ? 3 : kLayerWords.size();
  if (index % 10 == 0) return numbered(encode(kLayerWords[index / 10 % words]), index);
  return numbered("LAYER_", index);
}

std::string BenchDrawing::linetypeName(std::size_t index) const {
  static constexpr std::array<std::string_view, 3> kFixed = {"ByBlock", "ByLayer", "Continuous"};
  return index < kFixed.size() ? std::string(kFixed[index]) : numbered("DASHED_", index);
}

std::string BenchDrawing::styleName(std::size_t index) const {
  return index == 0 ? "Standard" : numbered("STYLE_", index);
}

std::string BenchDrawing::blockName(std::size_t index) const {
  return numbered(index % 7 == 0 ? encode(U"Fenster-") : "BLOCK_", index);
}

double BenchDrawing::coordinate() {
  // Four decimals, as drawings in millimetres usually have.
  return std::round(std::uniform_real_distribution<double>(-50000.0, 50000.0)(random_) * 1e4) / 1e4;
}

void BenchDrawing::write(DxfTagSink& sink) {
  sink_ = &sink;
  sink.text(999, "benchmark drawing");
  header();
  if (!options_.r12) {
    sink.text(0, "SECTION");
    sink.text(2, "CLASSES");
    sink.text(0, "ENDSEC");
  }
  tables();
  blocks();
  entities();
  if (!options_.r12) objects();
  sink.text(0, "EOF");
  sink_ = nullptr;
}

void BenchDrawing::header() {
  DxfTagSink& s = *sink_;
  s.text(0, "SECTION");
  s.text(2, "HEADER");
  s.text(9, "$ACADVER");
  s.text(1, options_.r12 ? "AC1009" : "AC1032");
  s.text(9, "$DWGCODEPAGE");
  s.text(3, "ANSI_1252");
  s.text(9, "$INSBASE");
  s.point(10, 0, 0, 0);
  s.text(9, "$EXTMIN");
  s.point(10, -50000, -50000, 0);
  s.text(9, "$EXTMAX");
  s.point(10, 50000, 50000, 0);
  s.text(9, "$LTSCALE");
  s.real(40, 1.0);
  s.text(9, "$CLAYER");
  s.text(8, "0");
  s.text(9, "$TEXTSTYLE");
  s.text(7, "Standard");
  if (options_.r12) {
    s.text(9, "$HANDLING");
    s.integer(70, 1);
  } else {
    s.text(9, "$INSUNITS");
    s.integer(70, 4);
    s.text(9, "$MEASUREMENT");
    s.integer(70, 1);
  }
  // Above every handle this drawing uses: table records, blocks of up to ten entities, and
  // entities of up to ten handles each (an R12 polyline with its vertices), xrecords.
  const std::uint64_t handSeed = handleSeed_ + options_.layers + options_.linetypes +
                                 options_.textStyles + 16 + (options_.blocks + 2) * 102 +
                                 options_.entities * 10 + options_.xrecords + 1024;
  s.text(9, "$HANDSEED");
  s.handle(5, handSeed);
  s.text(0, "ENDSEC");
}

void BenchDrawing::tableHead(std::string_view name, std::uint64_t handle, std::size_t count) {
  DxfTagSink& s = *sink_;
  s.text(0, "TABLE");
  s.text(2, name);
  s.handle(5, handle);
  if (!options_.r12) {
    s.handle(330, 0);
    s.text(100, "AcDbSymbolTable");
  }
  s.integer(70, static_cast<std::int64_t>(count));
  if (!options_.r12 && name == "DIMSTYLE") s.text(100, "AcDbDimStyleTable");
}

void BenchDrawing::recordHead(std::string_view type, std::uint64_t table, std::string_view subclass,
                              const std::string& name, int handleCode) {
  DxfTagSink& s = *sink_;
  s.text(0, type);
  s.handle(handleCode, nextHandle());
  if (!options_.r12) {
    s.handle(330, table);
    s.text(100, "AcDbSymbolTableRecord");
    s.text(100, subclass);
  }
  s.text(2, name);
  s.integer(70, 0);
}

void BenchDrawing::tables() {
  DxfTagSink& s = *sink_;
  s.text(0, "SECTION");
  s.text(2, "TABLES");
  for (const Table& table : tables_) {
    const std::string& name = table.name;
    if (name == "VPORT") {
      tableHead(name, table.handle, 1);
      recordHead("VPORT", table.handle, "AcDbViewportTableRecord", "*Active");
      s.real(10, 0.0);
      s.real(20, 0.0);
      s.real(11, 1.0);
      s.real(21, 1.0);
      s.real(12, 0.0);
      s.real(22, 0.0);
      s.real(40, 100000.0);
      s.real(41, 1.5);
    } else if (name == "LTYPE") {
      tableHead(name, table.handle, options_.linetypes);
      for (std::size_t i = 0; i < options_.linetypes; ++i) {
        recordHead("LTYPE", table.handle, "AcDbLinetypeTableRecord", linetypeName(i));
        const bool dashed = i >= 3;
        s.text(3, dashed ? "Dashed __ __ __" : "");
        s.integer(72, 65);
        s.integer(73, dashed ? 2 : 0);
        s.real(40, dashed ? 0.5 + static_cast<double>(i) * 0.25 : 0.0);
        if (dashed) {
          s.real(49, 0.25 + static_cast<double>(i) * 0.25);
          if (!options_.r12) s.integer(74, 0);
          s.real(49, -0.25);
          if (!options_.r12) s.integer(74, 0);
        }
      }
    } else if (name == "LAYER") {
      tableHead(name, table.handle, options_.layers);
      for (std::size_t i = 0; i < options_.layers; ++i) {
        recordHead("LAYER", table.handle, "AcDbLayerTableRecord", layerName(i));
        s.integer(62, static_cast<std::int64_t>(1 + i % 255));
        // A layer has a real linetype, never ByBlock or ByLayer.
        s.text(6, linetypeName(2 + i % (options_.linetypes - 2)));
        if (!options_.r12) s.integer(370, i % 3 == 0 ? -3 : 25);
      }
    } else if (name == "STYLE") {
      tableHead(name, table.handle, options_.textStyles);
      for (std::size_t i = 0; i < options_.textStyles; ++i) {
        recordHead("STYLE", table.handle, "AcDbTextStyleTableRecord", styleName(i));
        s.real(40, 0.0);
        s.real(41, 1.0);
        s.real(50, i % 4 == 0 ? 15.0 : 0.0);
        s.integer(71, 0);
        s.real(42, 2.5);
        s.text(3, i % 2 ? "arial.ttf" : "txt");
        s.text(4, "");
      }
    } else if (name == "APPID") {
      tableHead(name, table.handle, 2);
      recordHead("APPID", table.handle, "AcDbRegAppTableRecord", "ACAD");
      recordHead("APPID", table.handle, "AcDbRegAppTableRecord", "BENCH");
    } else if (name == "DIMSTYLE") {
      tableHead(name, table.handle, 4);
      for (int i = 0; i < 4; ++i) {
        recordHead("DIMSTYLE", table.handle, "AcDbDimStyleTableRecord",
                   i == 0 ? "Standard" : numbered("DIM_", static_cast<std::size_t>(i)), 105);
        s.real(41, 2.5 * (i + 1));
        s.real(140, 2.5 * (i + 1));
        s.integer(77, 1);
      }
    } else if (name == "BLOCK_RECORD") {
      tableHead(name, table.handle, 2 + options_.blocks);
      auto record = [&](std::uint64_t handle, const std::string& block, std::uint64_t layout) {
        s.text(0, "BLOCK_RECORD");
        s.handle(5, handle);
        s.handle(330, table.handle);
        s.text(100, "AcDbSymbolTableRecord");
        s.text(100, "AcDbBlockTableRecord");
        s.text(2, block);
        s.handle(340, layout);
        s.integer(70, 0);
        s.integer(280, 1);
        s.integer(281, 0);
      };
      record(modelSpaceRecord_, "*Model_Space", modelLayout_);
      record(paperSpaceRecord_, "*Paper_Space", paperLayout_);
      for (std::size_t i = 0; i < options_.blocks; ++i) record(blockRecords_[i], blockName(i), 0);
    } else {
      tableHead(name, table.handle, 0);  // VIEW, UCS: present and empty
    }
    s.text(0, "ENDTAB");
  }
  s.text(0, "ENDSEC");
}

void BenchDrawing::blocks() {
  DxfTagSink& s = *sink_;
  s.text(0, "SECTION");
  s.text(2, "BLOCKS");
  auto block = [&](const std::string& name, std::uint64_t record, bool paper, auto&& body) {
    s.text(0, "BLOCK");
    s.handle(5, nextHandle());
    if (!options_.r12) {
      s.handle(330, record);
      s.text(100, "AcDbEntity");
      if (paper) s.integer(67, 1);
    }
    s.text(8, "0");
    if (!options_.r12) s.text(100, "AcDbBlockBegin");
    s.text(2, name);
    s.integer(70, 0);
    s.point(10, 0, 0, 0);
    s.text(3, name);
    s.text(1, "");
    body();
    s.text(0, "ENDBLK");
    s.handle(5, nextHandle());
    if (!options_.r12) {
      s.handle(330, record);
      s.text(100, "AcDbEntity");
      if (paper) s.integer(67, 1);
    }
    s.text(8, "0");
    if (!options_.r12) s.text(100, "AcDbBlockEnd");
  };
  // Layout blocks came with R13; R12 files have none.
  if (!options_.r12) {
    block("*Model_Space", modelSpaceRecord_, false, [] {});
    block("*Paper_Space", paperSpaceRecord_, true, [] {});
  }
  for (std::size_t i = 0; i < options_.blocks; ++i) {
    block(blockName(i), blockRecords_[i], false, [&] {
      // Block contents never hold inserts, so blocks cannot nest into a cycle.
      for (std::size_t k = 0; k < 4 + i % 7; ++k) entity(blockRecords_[i], k * 13 + i);
    });
  }
  s.text(0, "ENDSEC");
}

void BenchDrawing::entities() {
  DxfTagSink& s = *sink_;
  s.text(0, "SECTION");
  s.text(2, "ENTITIES");
  for (std::size_t i = 0; i < options_.entities; ++i) entity(modelSpaceRecord_, i);
  s.text(0, "ENDSEC");
}

void BenchDrawing::entityHead(std::string_view type, std::uint64_t owner,
                              std::string_view subclass) {
  DxfTagSink& s = *sink_;
  const std::size_t layer = random_() % options_.layers;
  s.text(0, type);
  s.handle(5, nextHandle());
  if (!options_.r12) {
    s.handle(330, owner);
    s.text(100, "AcDbEntity");
  }
  s.text(8, layerName(layer));
  if (layer % 5 == 1) s.text(6, linetypeName(random_() % options_.linetypes));
  if (layer % 3 == 2) s.integer(62, static_cast<std::int64_t>(random_() % 255 + 1));
  if (!options_.r12) s.text(100, subclass);
}

void BenchDrawing::entity(std::uint64_t owner, std::size_t index) {
  DxfTagSink& s = *sink_;
  const bool inBlock = owner != modelSpaceRecord_;
  const unsigned kind = static_cast<unsigned>(random_() % 20);
  if (kind < 6) {
    entityHead("LINE", owner, "AcDbLine");
    s.point(10, coordinate(), coordinate(), 0.0);
    s.point(11, coordinate(), coordinate(), 0.0);
  } else if (kind < 8) {
    entityHead("CIRCLE", owner, "AcDbCircle");
    s.point(10, coordinate(), coordinate(), 0.0);
    s.real(40, 1.0 + static_cast<double>(random_() % 5000) / 8.0);
  } else if (kind < 10) {
    entityHead("ARC", owner, "AcDbCircle");
    s.point(10, coordinate(), coordinate(), 0.0);
    s.real(40, 1.0 + static_cast<double>(random_() % 5000) / 8.0);
    if (!options_.r12) s.text(100, "AcDbArc");
    s.real(50, static_cast<double>(random_() % 360));
    s.real(51, static_cast<double>(random_() % 360));
  } else if (kind < 13) {
    const int vertices = 3 + static_cast<int>(random_() % 6);
    if (options_.r12) {
      entityHead("POLYLINE", owner, "");
      s.integer(66, 1);
      s.point(10, 0.0, 0.0, 0.0);
      s.integer(70, 1);
      for (int v = 0; v < vertices; ++v) {
        s.text(0, "VERTEX");
        s.handle(5, nextHandle());
        s.text(8, "0");
        s.point(10, coordinate(), coordinate(), 0.0);
      }
      s.text(0, "SEQEND");
      s.handle(5, nextHandle());
      s.text(8, "0");
    } else {
      entityHead("LWPOLYLINE", owner, "AcDbPolyline");
      s.integer(90, vertices);
      s.integer(70, 1);
      s.real(43, 0.0);
      for (int v = 0; v < vertices; ++v) {
        s.real(10, coordinate());
        s.real(20, coordinate());
      }
    }
  } else if (kind < 16 || (kind == 16 && options_.r12)) {
    entityHead("TEXT", owner, "AcDbText");
    s.point(10, coordinate(), coordinate(), 0.0);
    s.real(40, 2.5);
    s.text(1, encode(kTexts[random_() % kTexts.size()]));
    s.text(7, styleName(random_() % options_.textStyles));
    if (!options_.r12) s.text(100, "AcDbText");
  } else if (kind == 16) {
    entityHead("MTEXT", owner, "AcDbMText");
    s.point(10, coordinate(), coordinate(), 0.0);
    s.real(40, 3.5);
    s.real(41, 120.0);
    s.integer(71, 1);
    s.integer(72, 5);
    s.text(1, encode(std::u32string(kTexts[random_() % kTexts.size()]) + U"\\P" +
                     std::u32string(kTexts[random_() % kTexts.size()])));
    s.text(7, styleName(random_() % options_.textStyles));
  } else if (kind < 19 && !inBlock && options_.blocks > 0) {
    entityHead("INSERT", owner, "AcDbBlockReference");
    s.text(2, blockName(random_() % options_.blocks));
    s.point(10, coordinate(), coordinate(), 0.0);
    s.real(41, 1.0);
    s.real(42, 1.0);
    s.real(50, static_cast<double>(random_() % 4) * 90.0);
  } else {
    entityHead("POINT", owner, "AcDbPoint");
    s.point(10, coordinate(), coordinate(), 0.0);
  }
  if (index % 10 == 3) {
    s.text(1001, "BENCH");
    s.text(1000, numbered("item ", index % 10000));
    s.real(1040, static_cast<double>(index) * 0.5);
    s.integer(1070, static_cast<std::int64_t>(index % 30000));
  }
}

void BenchDrawing::objects() {
  DxfTagSink& s = *sink_;
  s.text(0, "SECTION");
  s.text(2, "OBJECTS");
  auto dictionary = [&](std::uint64_t handle, std::uint64_t owner) {
    s.text(0, "DICTIONARY");
    s.handle(5, handle);
    if (owner) {
      s.text(102, "{ACAD_REACTORS");
      s.handle(330, owner);
      s.text(102, "}");
    }
    s.handle(330, owner);
    s.text(100, "AcDbDictionary");
    s.integer(281, 1);
  };
  dictionary(rootDictionary_, 0);
  s.text(3, "ACAD_GROUP");
  s.handle(350, groupDictionary_);
  s.text(3, "ACAD_LAYOUT");
  s.handle(350, layoutDictionary_);
  s.text(3, "BENCH_DATA");
  s.handle(350, dataDictionary_);
  dictionary(groupDictionary_, rootDictionary_);
  dictionary(layoutDictionary_, rootDictionary_);
  s.text(3, "Layout1");
  s.handle(350, paperLayout_);
  s.text(3, "Model");
  s.handle(350, modelLayout_);

  std::vector<std::uint64_t> records(options_.xrecords);
  dictionary(dataDictionary_, rootDictionary_);
  for (std::size_t i = 0; i < records.size(); ++i) {
    records[i] = nextHandle();
    s.text(3, numbered(i % 9 == 0 ? encode(U"Prüfung_") : "RECORD_", i));
    s.handle(350, records[i]);
  }
  for (std::size_t i = 0; i < records.size(); ++i) xrecord(records[i], dataDictionary_, i);

  auto layout = [&](std::uint64_t handle, const char* name, int order, std::uint64_t record) {
    s.text(0, "LAYOUT");
    s.handle(5, handle);
    s.text(102, "{ACAD_REACTORS");
    s.handle(330, layoutDictionary_);
    s.text(102, "}");
    s.handle(330, layoutDictionary_);
    s.text(100, "AcDbPlotSettings");
    s.text(1, "");
    s.text(2, "none_device");
    s.text(4, "ISO_A3_(420.00_x_297.00_MM)");
    s.text(6, "");
    s.integer(70, 688);
    s.integer(72, 1);
    s.text(100, "AcDbLayout");
    s.text(1, name);
    s.integer(70, 1);
    s.integer(71, order);
    s.real(10, 0.0);
    s.real(20, 0.0);
    s.real(11, 420.0);
    s.real(21, 297.0);
    s.integer(76, 0);
    s.handle(330, record);
  };
  layout(modelLayout_, "Model", 0, modelSpaceRecord_);
  layout(paperLayout_, "Layout1", 1, paperSpaceRecord_);
  s.text(0, "ENDSEC");
}

void BenchDrawing::xrecord(std::uint64_t handle, std::uint64_t owner, std::size_t index) {
  DxfTagSink& s = *sink_;
  s.text(0, "XRECORD");
  s.handle(5, handle);
  s.text(102, "{ACAD_REACTORS");
  s.handle(330, owner);
  s.text(102, "}");
  s.handle(330, owner);
  s.text(100, "AcDbXrecord");
  s.integer(280, 1);
  s.text(1, encode(kTexts[index % kTexts.size()]));
  s.point(10, coordinate(), coordinate(), 0.0);
  s.real(40, static_cast<double>(index) / 3.0);
  s.integer(70, static_cast<std::int64_t>(index % 32000));
  s.integer(90, static_cast<std::int64_t>(index * 1000));
  s.integer(160, static_cast<std::int64_t>(index) << 33);
  s.integer(290, static_cast<std::int64_t>(index % 2));
  std::string bytes(16 + index % 48, '\0');
  for (std::size_t k = 0; k < bytes.size(); ++k) bytes[k] = static_cast<char>(random_());
  s.chunk(310, bytes);
  for (int k = 0; k < 4; ++k) s.text(300, numbered("value ", index * 4 + k));
}
