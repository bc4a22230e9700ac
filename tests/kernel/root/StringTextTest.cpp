// UTF-8 in and out, formatting, and the editing operations of OdString.

#include <gtest/gtest.h>

#include <string>

#include "OdError.h"
#include "OdString.h"

namespace {

const std::wstring kReplacement(1, L'\uFFFD');

TEST(StringText, InvalidUtf8BecomesReplacementCharacters) {
  struct Case {
    std::string bytes;
    std::wstring expected;
  };
  const Case cases[] = {
      {"a\xFF"
       "b",
       L"a\uFFFDb"},                                      // a byte that never occurs in UTF-8
      {"ab\xE2\x82", L"ab\uFFFD"},                        // a sequence cut off at the end
      {"\xC0\xAF", L"\uFFFD\uFFFD"},                      // an overlong '/'
      {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},            // an encoded surrogate
      {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},  // past U+10FFFF
      {"\x80\x80x", L"\uFFFD\uFFFDx"},                    // stray continuation bytes
      {std::string("n\0ul", 4), std::wstring(L"n\0ul", 4)},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(OdString::fromUtf8(c.bytes).str(), c.expected);
    EXPECT_EQ(OdString(c.bytes).str(), c.expected);
  }
  // Well-formed text of every length class comes back byte for byte.
  const std::string good = "Layer Ä Слой 图层 \xF0\x9F\x98\x80";
  OdString text(good.c_str());
  EXPECT_EQ(text.getLength(), 17);  // one index per code point, the emoji included
  EXPECT_EQ(text[16], wchar_t(0x1F600));
  EXPECT_EQ(text.toUtf8(), good);
  // Wide values that are no code point are written as U+FFFD, never as invalid UTF-8.
  OdString odd(std::wstring{wchar_t(0xDC00), wchar_t(0x110000), wchar_t(-1)});
  EXPECT_EQ(odd.toUtf8(), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(OdString(static_cast<const char*>(nullptr)).getLength(), 0);
  EXPECT_EQ(OdString(static_cast<const wchar_t*>(nullptr)).getLength(), 0);
}

TEST(StringText, FormatsWideAndNarrow) {
  EXPECT_EQ(OdString::format(L"%ls: %d, %.2f", L"Слой", -42, 3.14159), OdString("Слой: -42, 3.14"));
  EXPECT_EQ(OdString::format("%s: %d, %.2f", "Слой", 7, 0.25), OdString("Слой: 7, 0.25"));
  EXPECT_EQ(OdString::format(L"%ls", L""), OdString());

  // Results longer than any first guess at the buffer.
  std::wstring longName(3000, L'ж');
  OdString wide = OdString::format(L"[%ls] %d", longName.c_str(), 5);
  EXPECT_EQ(wide.getLength(), 3000 + 4);
  EXPECT_EQ(wide.right(3), OdString("] 5"));
  EXPECT_EQ(wide.left(2), OdString("[ж"));
  std::string longUtf8 = OdString(longName).toUtf8();
  OdString narrow = OdString::format("%s|%s", longUtf8.c_str(), "end");
  EXPECT_EQ(narrow.getLength(), 3000 + 4);
  EXPECT_EQ(narrow.right(4), OdString("|end"));

  // Bytes the C library cannot convert for a wide %s: a clear error, not an endless loop.
  try {
    OdString::format(L"%s", "\xFF\xFE");
    ADD_FAILURE() << "expected an error";
  } catch (const OdError& e) {
    EXPECT_EQ(e.code(), eInvalidInput);
    EXPECT_NE(std::string(e.what()).find("cannot format"), std::string::npos) << e.what();
  }
}

TEST(StringText, SlicingClampsToTheText) {
  // Only the edges: past the end, before the start, negative counts.
  OdString name("Слой_01");
  EXPECT_EQ(name.mid(-3, 2), OdString("Сл"));
  EXPECT_EQ(name.mid(5, 100), OdString("01"));
  EXPECT_TRUE(name.mid(7).isEmpty());
  EXPECT_EQ(name.left(100), name);
  EXPECT_TRUE(name.left(-1).isEmpty());
  EXPECT_EQ(name.right(100), name);
  EXPECT_TRUE(name.right(-5).isEmpty());
  EXPECT_EQ(name.find(L'о', -10), 2);
  EXPECT_EQ(name.find(L'1', 99), -1);
  EXPECT_EQ(OdString(name).deleteChars(4, 99), OdString("Слой"));
  EXPECT_EQ(OdString(name).insert(99, OdString("!")), OdString("Слой_01!"));
  EXPECT_EQ(OdString(name).insert(-2, OdString("!")), OdString("!Слой_01"));

  EXPECT_EQ(name.getAt(0), L'С');
  for (int bad : {-1, 7}) {
    try {
      name.getAt(bad);
      ADD_FAILURE() << "expected an error for index " << bad;
    } catch (const OdError_InvalidIndex& e) {
      EXPECT_EQ(e.code(), eInvalidIndex);
      EXPECT_NE(std::string(e.what()).find(std::to_string(bad)), std::string::npos) << e.what();
    }
  }
}

TEST(StringText, ReplaceAndTrim) {
  OdString text("aaaa");
  EXPECT_EQ(text.replace(OdString("aa"), OdString("b")), 2);  // left to right, no overlap
  EXPECT_EQ(text, OdString("bb"));
  OdString grow("a-b-c");
  EXPECT_EQ(grow.replace(OdString("-"), OdString("--")), 2);  // no rescanning of the result
  EXPECT_EQ(grow, OdString("a--b--c"));
  EXPECT_EQ(grow.replace(OdString(), OdString("x")), 0);
  EXPECT_EQ(grow.replace(OdString("z"), OdString("x")), 0);

  // Unicode white space, such as the no-break and ideographic spaces of pasted names.
  OdString padded(L" \t\u00A0\u3000Слой \u00A0\n");
  EXPECT_EQ(OdString(padded).trimLeft(), OdString(L"Слой \u00A0\n"));
  EXPECT_EQ(OdString(padded).trimRight(), OdString(L" \t\u00A0\u3000Слой"));
  EXPECT_TRUE(OdString(L" \u00A0 ").trimLeft().isEmpty());
}

TEST(StringText, NarrowTextComparesAsciiCaseOnly) {
  EXPECT_EQ(OdAnsiString("Layer1").iCompare(OdAnsiString("LAYER1")), 0);
  EXPECT_LT(OdAnsiString("abc").iCompare(OdAnsiString("ABD")), 0);
  // Bytes of an unknown code page are never case-folded: 0xC4 and 0xE4 stay different.
  EXPECT_NE(OdAnsiString("\xC4").iCompare(OdAnsiString("\xE4")), 0);
  EXPECT_GT(OdAnsiString("\xE4").iCompare(OdAnsiString("z")), 0);  // bytes are unsigned
}

}  // namespace
