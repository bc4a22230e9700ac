// The DXF code-page names and the ICU converters they stand for.

#include <gtest/gtest.h>

#include <string>

#include "OdCodePageNames.h"
#include "OdError.h"
#include "OdString.h"

namespace {

TEST(CodePageNames, EveryMappedConverterOpensAndAgreesBothWays) {
  ASSERT_GE(odCodePageNames().size(), 40u);
  for (const OdCodePageName& entry : odCodePageNames()) {
    SCOPED_TRACE(entry.dxfName);
    // Opens on this machine's ICU, and ASCII (the bytes of every name) passes unchanged.
    bool lossless = false;
    EXPECT_EQ(OdString("Layer_0").toCodePage(entry.icuName, &lossless), "Layer_0");
    EXPECT_TRUE(lossless);
    EXPECT_EQ(odDxfCodePageToIcu(entry.dxfName), entry.icuName);
    // The way back may pick another DXF name of the same converter, never a different one.
    std::string back = odIcuToDxfCodePage(entry.icuName);
    ASSERT_FALSE(back.empty());
    EXPECT_EQ(odIcuToDxfCodePage(odDxfCodePageToIcu(back)), back);
    EXPECT_EQ(odIcuToDxfCodePage(odDxfCodePageToIcu(back)), odIcuToDxfCodePage(entry.icuName));
  }
}

TEST(CodePageNames, MatchesNamesAsFilesWriteThem) {
  EXPECT_EQ(odDxfCodePageToIcu("ANSI_1252"), "windows-1252");
  EXPECT_EQ(odDxfCodePageToIcu("ansi_1252"), "windows-1252");
  EXPECT_EQ(odDxfCodePageToIcu(" dos932\r"), odDxfCodePageToIcu("ANSI_932"));
  EXPECT_EQ(odDxfCodePageToIcu("Mac-Roman"), odDxfCodePageToIcu("MACINTOSH"));
  EXPECT_EQ(odDxfCodePageToIcu("utf8"), "UTF-8");
  // No converter for Johab in ICU; unknown and empty names: the caller picks the fallback.
  for (const char* unknown : {"ANSI_1361", "JOHAB", "UNDEFINED", "ANSI_", "", "ANSI_12520"})
    EXPECT_EQ(odDxfCodePageToIcu(unknown), "") << unknown;

  // Any ICU alias finds the DXF name; the ANSI_ form wins over the DOS one.
  EXPECT_EQ(odIcuToDxfCodePage("cp1252"), "ANSI_1252");
  EXPECT_EQ(odIcuToDxfCodePage("ibm-5348_P100-1997"), "ANSI_1252");
  EXPECT_EQ(odIcuToDxfCodePage("GBK"), "ANSI_936");
  EXPECT_EQ(odIcuToDxfCodePage("Shift_JIS"), "ANSI_932");
  EXPECT_EQ(odIcuToDxfCodePage("ibm-850"), "DOS850");
  EXPECT_EQ(odIcuToDxfCodePage("no-such-converter"), "");
  EXPECT_EQ(odIcuToDxfCodePage("UTF-16LE"), "");
}

TEST(CodePageNames, MappedConvertersDecodeTheirOwnScripts) {
  // The mapping must lead to the right table, not merely to one that opens.
  struct Case {
    const char* dxfName;
    std::string bytes;
    const char* text;
  };
  const Case cases[] = {
      {"ANSI_1251", "\xD1\xEB\xEE\xE9", "Слой"},
      {"ANSI_1253", "\xD9", "Ω"},
      {"ANSI_1250", "\x8A", "Š"},
      {"ANSI_936", "\xCD\xBC", "图"},
      {"DOS932", "\x93\xFA", "日"},
      {"ANSI_949", "\xC7\xD1", "한"},
      {"BIG5", "\xA4\xA4", "中"},
      {"DOS850", "\x81", "ü"},
      {"DOS866", "\x91", "С"},
      {"MAC-ROMAN", "\x8A", "ä"},
      {"ISO8859-5", "\xC1", "С"},
      {"ANSI_874", "\xA1", "ก"},
  };
  for (const Case& c : cases) {
    std::string icu = odDxfCodePageToIcu(c.dxfName);
    EXPECT_EQ(OdString::fromCodePage(c.bytes, icu.c_str()), OdString(c.text)) << c.dxfName;
  }
}

}  // namespace
