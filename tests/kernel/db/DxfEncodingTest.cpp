// Text of real drawings comes out as the right Unicode, whatever the file's encoding, and a
// changed text goes back in the file's own encoding.

#include <gtest/gtest.h>

#include <set>

#include "DxfReader.h"
#include "DxfTextCodec.h"
#include "DxfWriter.h"
#include "OdError.h"
#include "TestSupport.h"

namespace {

std::unique_ptr<DxfDocument> loadCorpus(const std::string& name) {
  auto dir = testsupport::corpusDir();
  if (dir.empty()) return nullptr;
  return DxfReader::readFile(dir / name);
}

// The LAYER records of the TABLES section.
std::vector<DxfObject*> layers(DxfDocument& doc) {
  std::vector<DxfObject*> found;
  DxfSection* tables = doc.findSection("TABLES");
  if (!tables) return found;
  for (DxfObject& object : tables->objects())
    if (object.type() == "LAYER") found.push_back(&object);
  return found;
}

std::set<std::wstring> layerNames(DxfDocument& doc) {
  std::set<std::wstring> names;
  for (DxfObject* layer : layers(doc)) names.insert(layer->text(layer->find(2)).str());
  return names;
}

TEST(DxfEncoding, NamesOfRealDrawingsDecodeToUnicode) {
  if (testsupport::corpusDir().empty()) GTEST_SKIP() << "the shared corpus is absent";
  struct Case {
    const char* file;
    const wchar_t* layer;
  };
  const Case cases[] = {
      // \U+ escapes (Greek) next to raw cp1252 umlauts, no code page given
      {"r12_ezdxf_ascii_greek_umlaut_layer.dxf",
       L"\u039B\u0391\u0393\u0395\u03A1\u00C4\u00DC\u00D6"},
      {"r2000_qcad_din6771_a3_Uescape_layers.dxf", L"Verma\u00DFung"},
      {"r2000_qcad_din6771_a3_Uescape_layers.dxf", L"RAHMEN_AU\u00DFEN"},
      {"r2004_geoconv_rect2_japanese_Uescape.dxf", L"\u30EC\u30A4\u30E4\u30FC 1"},
      // raw cp1251 and cp1252 bytes
      {"r2000_zcad_cyrillic_cp1251_48layers.dxf", L"\u041F\u041B\u041E\u0429\u0410\u0414\u0418"},
      {"r2000_zcad_3d_mount_cyrillic_31layers.dxf", L"\u041E\u0421_\u0442\u0435\u043A\u0441\u0442"},
      {"r2004_dxf2gcode_fluegel_german_raw_cp1252.dxf", L"BEST\u00DCCKUNGSFL\u00C4CHE"},
      {"r2004_godxf_issue52_french_raw_cp1252.dxf", L"trac\u00E9"},
      // UTF-8 from R2007, and an escape that an upgraded file kept
      {"r2007_cadreproj_korean_utf8_64layers_3mb.dxf", L"\uD6A1\uB2E8\uBCF4\uB3C4"},
      {"r2013_libredwg_gh109_chinese_utf8.dxf", L"\u6D01\u5177"},
      {"r2013_ezdxf_german_utf8_plus_Uescape_layer.dxf", L"Tsch\u00FCss mit \u00FC"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    auto doc = loadCorpus(c.file);
    auto names = layerNames(*doc);
    EXPECT_EQ(names.count(c.layer), 1u);
  }
  EXPECT_EQ(loadCorpus("r13_ezdxf_small_dos932.dxf")->codec().codePage(), "windows-932");
  EXPECT_EQ(loadCorpus("r2004_godxf_issue28_undefined_cp.dxf")->codec().codePage(), "windows-1252");
  EXPECT_EQ(loadCorpus("r12_dxf2gcode_stir1.dxf")->codec().codePage(), "windows-1252");
  EXPECT_TRUE(loadCorpus("r2018_dxfjson_tc1_korean_utf8.dxf")->codec().isUtf8());
}

// Renames the first non-zero layer of a corpus drawing, saves and reloads it; returns the
// raw bytes the new name was stored as.
std::string renameLayer(const std::string& file, const OdString& name,
                        const testsupport::TempDir& temp) {
  auto doc = loadCorpus(file);
  DxfObject* layer = layers(*doc).back();
  layer->setText(layer->find(2), name);
  auto out = temp.path() / file;
  DxfWriter(*doc).save(out);
  auto again = DxfReader::readFile(out);
  DxfObject* reread = layers(*again).back();
  EXPECT_EQ(reread->text(reread->find(2)), name);
  return std::string(reread->rawValue(reread->find(2)));
}

TEST(DxfEncoding, AChangedNameGoesBackInTheFilesEncoding) {
  if (testsupport::corpusDir().empty()) GTEST_SKIP() << "the shared corpus is absent";
  testsupport::TempDir temp;
  // Cyrillic is in cp1251; Greek is not and becomes escapes.
  EXPECT_EQ(renameLayer("r2000_zcad_3d_mount_cyrillic_31layers.dxf",
                        L"\u041D\u043E\u0432\u044B\u0439", temp),
            "\xCD\xEE\xE2\xFB\xE9");
  EXPECT_EQ(renameLayer("r2000_zcad_3d_mount_cyrillic_31layers.dxf", L"\u03A9-\u0416", temp),
            "\\U+03A9-\xC6");
  EXPECT_EQ(renameLayer("r13_ezdxf_small_dos932.dxf", L"\u30EC\u30A4\u30E4\u30FC", temp),
            "\x83\x8C\x83\x43\x83\x84\x81\x5B");
  EXPECT_EQ(renameLayer("r2018_dxfjson_tc1_korean_utf8.dxf", L"\uC8FC\uC11D \u00E9", temp),
            "\xEC\xA3\xBC\xEC\x84\x9D \xC3\xA9");
  EXPECT_EQ(renameLayer("bin_r2000_ezdxf_small.dxf", L"Stra\u00DFe \u263A", temp),
            "Stra\xDF"
            "e \\U+263A");
}

TEST(DxfEncoding, EscapesAndCodePagesOfTheCodec) {
  DxfTextCodec r2000("AC1015", "ANSI_1252");
  // \M+n names a double-byte character of an East Asian code page.
  EXPECT_EQ(r2000.decode("a\\M+182A0b").str(), L"a\u3042b");
  EXPECT_EQ(r2000.decode("\\M+5C4E3").str(), L"\u4F60");
  // lower-case hex, a surrogate pair, and things that only look like escapes
  EXPECT_EQ(r2000.decode("\\U+00df\\U+D83D\\U+DE00").str(), L"\u00DF\U0001F600");
  EXPECT_EQ(r2000.decode("\\U+12G4 \\U+").str(), L"\\U+12G4 \\U+");
  EXPECT_EQ(r2000.encode(L"\U0001F600"), "\\U+D83D\\U+DE00");
  EXPECT_EQ(r2000.decode("\xE9").str(), L"\u00E9");

  DxfTextCodec lowerCase("AC1009", " ansi_1251 ");
  EXPECT_EQ(lowerCase.codePage(), "windows-1251");
  DxfTextCodec unknown("AC1018", "NO_SUCH_PAGE");
  EXPECT_EQ(unknown.codePage(), "windows-1252");
  DxfTextCodec utf8("AC1021", "ANSI_1251");
  EXPECT_TRUE(utf8.isUtf8());
  EXPECT_EQ(utf8.decode("\xC3\xA9\\U+00E9").str(), L"\u00E9\u00E9");
  EXPECT_EQ(utf8.encode(L"\u00E9\u4F60"), "\xC3\xA9\xE4\xBD\xA0");
}

}  // namespace
