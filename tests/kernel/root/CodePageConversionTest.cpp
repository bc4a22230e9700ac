// Conversion between OdString and the code pages of older drawings, through ICU.

#include <gtest/gtest.h>

#include <string>

#include "OdError.h"
#include "OdString.h"

namespace {

TEST(CodePageConversion, RoundTripsRealTextWithTheRightBytes) {
  struct Case {
    const char* codePage;
    const char* text;         // UTF-8
    std::string knownPrefix;  // the code page's bytes for the first characters
  };
  const Case cases[] = {
      {"windows-1252", "€ Café naïve Größe", "\x80 Caf\xE9"},
      {"cp936", "中文图层 名称", "\xD6\xD0\xCE\xC4"},
      {"shift-jis", "日本語レイヤー ｶﾅ", "\x93\xFA\x96\x7B"},
      {"cp932", "図面 ①", "\x90\x7D\x96\xCA"},
      {"windows-1251", "Слой ЁЖЯ", "\xD1\xEB\xEE\xE9"},
      {"UTF-8", "Ω 😀", "\xCE\xA9"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.codePage);
    bool lossless = false;
    std::string bytes = OdString(c.text).toCodePage(c.codePage, &lossless);
    EXPECT_TRUE(lossless);
    EXPECT_EQ(bytes.substr(0, c.knownPrefix.size()), c.knownPrefix);
    EXPECT_EQ(OdString::fromCodePage(bytes, c.codePage), OdString(c.text));
  }
}

TEST(CodePageConversion, ReportsCharactersTheCodePageLacks) {
  struct Case {
    const char* codePage;
    const char* text;
  };
  for (const Case& c : {Case{"windows-1252", "Слой"}, Case{"windows-1252", "a€Ωb"},
                        Case{"cp936", "ก"}, Case{"windows-1251", "Größe"}, Case{"US-ASCII", "é"}}) {
    SCOPED_TRACE(std::string(c.codePage) + " " + c.text);
    bool lossless = true;
    std::string bytes = OdString(c.text).toCodePage(c.codePage, &lossless);
    EXPECT_FALSE(lossless);
    EXPECT_FALSE(bytes.empty());  // substituted, not dropped
  }
  // Unpaired surrogates in the wide text count as lost too.
  bool lossless = true;
  OdString(std::wstring{L'a', wchar_t(0xD800)}).toCodePage("windows-1252", &lossless);
  EXPECT_FALSE(lossless);

  // Converters are reused between calls: a lossy conversion must not taint the next one.
  for (int i = 0; i < 3; ++i) {
    OdString("Ω").toCodePage("windows-1252", &lossless);
    EXPECT_FALSE(lossless);
    OdString("é").toCodePage("windows-1252", &lossless);
    EXPECT_TRUE(lossless);
  }
}

TEST(CodePageConversion, BrokenBytesDecodeWithoutHarm) {
  // A lead byte cut off at the end becomes one substitute; the text before it survives.
  OdString cut = OdString::fromCodePage("ab\x93", "cp932");
  ASSERT_EQ(cut.getLength(), 3);
  EXPECT_EQ(cut.left(2), OdString("ab"));
  EXPECT_TRUE(cut[2] == 0xFFFD || cut[2] == 0x1A) << int(cut[2]);
  // Bytes the code page leaves undefined do not stop the decoding of what follows.
  OdString undefined = OdString::fromCodePage("\xA0\xFD\xFE\xFFxyz", "cp932");
  EXPECT_EQ(undefined.right(3), OdString("xyz"));
  // Whatever the last call left inside a reused converter is gone by the next.
  OdString::fromCodePage("\x93", "cp932");
  EXPECT_EQ(OdString::fromCodePage("A", "cp932"), OdString("A"));
  EXPECT_EQ(OdString::fromCodePage("", "cp932"), OdString());
  EXPECT_EQ(OdString::fromCodePage("\xFF", "UTF-8").str(), std::wstring(1, L'\uFFFD'));
}

TEST(CodePageConversion, UnknownCodePageIsNamedInTheError) {
  for (const char* name : {"ANSI_9999", "windows-9999", ""}) {
    try {
      OdString::fromCodePage("abc", name);
      ADD_FAILURE() << "expected an error for " << name;
    } catch (const OdError& e) {
      EXPECT_EQ(e.code(), eUnknownCodePage);
      if (*name) {
        EXPECT_NE(std::string(e.what()).find(name), std::string::npos) << e.what();
      }
    }
  }
  EXPECT_THROW(OdString("abc").toCodePage("no-such-code-page"), OdError);
  EXPECT_THROW(OdString("abc").toCodePage(nullptr), OdError);
}

}  // namespace
