// Case-insensitive comparison, case mapping and locale collation of OdString.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "OdString.h"

namespace {

TEST(StringCase, ICompareFoldsEveryScript) {
  struct Pair {
    const char* a;
    const char* b;
  };
  for (const Pair& p :
       {Pair{"Ü", "ü"}, Pair{"Ω", "ω"}, Pair{"Слой", "СЛОЙ"}, Pair{"Straße", "STRASSE"},
        Pair{"ΣΊΣΥΦΟΣ", "σίσυφος"}, Pair{"Layer1", "LAYER1"}, Pair{"", ""}}) {
    EXPECT_EQ(OdString(p.a).iCompare(OdString(p.b)), 0) << p.a << " / " << p.b;
    EXPECT_EQ(OdString(p.b).iCompare(OdString(p.a)), 0) << p.b << " / " << p.a;
  }
  // Different texts stay different, and the order is the same on both sides.
  for (const Pair& p :
       {Pair{"Слой", "Слои"}, Pair{"abc", "ABD"}, Pair{"Straße", "STRASS"}, Pair{"Layer", "Layer€"},
        Pair{"e", "é"}, Pair{"A-WALL-Слой", "a-wall-СЛОИ"}, Pair{"abc€", "ABCD"}}) {
    int forward = OdString(p.a).iCompare(OdString(p.b));
    EXPECT_NE(forward, 0) << p.a << " / " << p.b;
    EXPECT_EQ(OdString(p.b).iCompare(OdString(p.a)), -forward) << p.a << " / " << p.b;
  }
  // ASCII-only texts take a shortcut; it must order as the full fold does ("[" lies
  // between "Z" and "a", so folding to upper case instead would flip these).
  EXPECT_GT(OdString("Zx").iCompare(OdString("[x")), 0);
  EXPECT_GT(OdString("Zé").iCompare(OdString("[é")), 0);
}

TEST(StringCase, CaseMappingIsFullAndLocaleIndependent) {
  EXPECT_EQ(OdString("straße").makeUpper(), OdString("STRASSE"));
  EXPECT_EQ(OdString("слой ω").makeUpper(), OdString("СЛОЙ Ω"));
  // Final sigma needs context, which a character-by-character mapping gets wrong.
  EXPECT_EQ(OdString("ΟΔΟΣ").makeLower(), OdString("οδος"));
  // A Turkish user must not turn layer "i" into a dotted capital.
  const char* saved = std::getenv("LC_ALL");
  std::string restore = saved ? saved : "";
  setenv("LC_ALL", "tr_TR.UTF-8", 1);
  EXPECT_EQ(OdString("layer_i").makeUpper(), OdString("LAYER_I"));
  EXPECT_EQ(OdString("DIŞ").makeLower(), OdString("diş"));
  if (saved)
    setenv("LC_ALL", restore.c_str(), 1);
  else
    unsetenv("LC_ALL");
  // Values that are not code points survive as U+FFFD rather than vanishing.
  OdString odd(std::wstring{L'a', wchar_t(0xD800), L'b'});
  EXPECT_EQ(odd.makeUpper(), OdString(L"A\uFFFDB"));
}

// Each test sets the collation locale it needs and leaves the environment's in place.
class StringCollation : public ::testing::Test {
 protected:
  void TearDown() override { OdString::setCollationLocale(nullptr); }

  static std::vector<std::string> sorted(std::vector<std::string> names, bool ignoreCase) {
    std::vector<OdString> texts(names.begin(), names.end());
    std::sort(texts.begin(), texts.end(), [&](const OdString& a, const OdString& b) {
      return (ignoreCase ? a.iCollate(b) : a.collate(b)) < 0;
    });
    std::vector<std::string> out;
    for (const auto& t : texts) out.push_back(t.toUtf8());
    return out;
  }
};

TEST_F(StringCollation, SortsNamesAsAUserExpects) {
  OdString::setCollationLocale("en_US");
  EXPECT_EQ(OdString::collationLocale(), "en_US");
  std::vector<std::string> expected = {"apple", "Banana", "cherry", "éclair", "elephant", "zebra"};
  EXPECT_EQ(sorted({"zebra", "cherry", "éclair", "Banana", "elephant", "apple"}, false), expected);
  EXPECT_EQ(sorted({"zebra", "cherry", "éclair", "Banana", "elephant", "apple"}, true), expected);
  // Numbers before letters, as in any file dialog.
  EXPECT_LT(OdString("10").collate(OdString("A")), 0);

  // Case-insensitive collation ignores case and nothing else.
  EXPECT_EQ(OdString("Apple").iCollate(OdString("aPPLE")), 0);
  EXPECT_NE(OdString("Apple").collate(OdString("apple")), 0);
  EXPECT_NE(OdString("resume").iCollate(OdString("résumé")), 0);
}

TEST_F(StringCollation, FollowsTheLocaleWhenItChanges) {
  // Swedish sorts "ö" after "z"; English sorts it with "o".
  OdString::setCollationLocale("en_US");
  EXPECT_LT(OdString("öl").collate(OdString("zebra")), 0);
  OdString::setCollationLocale("sv_SE");
  EXPECT_GT(OdString("öl").collate(OdString("zebra")), 0);
  EXPECT_GT(OdString("Öl").iCollate(OdString("zebra")), 0);

  // From the environment when nothing is set; a POSIX name with code set works, C means root.
  OdString::setCollationLocale(nullptr);
  const char* saved = std::getenv("LC_ALL");
  std::string restore = saved ? saved : "";
  setenv("LC_ALL", "sv_SE.UTF-8", 1);
  OdString::setCollationLocale("");  // asks to read the environment again
  EXPECT_EQ(OdString::collationLocale(), "sv_SE");
  EXPECT_GT(OdString("öl").collate(OdString("zebra")), 0);
  setenv("LC_ALL", "C", 1);
  OdString::setCollationLocale("");
  EXPECT_EQ(OdString::collationLocale(), "root");
  EXPECT_LT(OdString("é").collate(OdString("z")), 0);
  if (saved)
    setenv("LC_ALL", restore.c_str(), 1);
  else
    unsetenv("LC_ALL");
}

TEST_F(StringCollation, EveryThreadSortsAlikeAndSeesLocaleChanges) {
  // Collators and converters are cached per thread; the threads must agree with each
  // other and all follow a change of locale made while they run.
  const std::vector<std::string> names = {"zebra", "öl", "Apple", "éclair", "Слой", "banana"};
  OdString::setCollationLocale("sv_SE");
  const std::vector<std::string> swedish = sorted(names, true);
  std::vector<std::vector<std::string>> before(4), after(4);
  std::vector<std::thread> threads;
  std::atomic<int> ready{0};
  std::atomic<bool> changed{false};
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      before[t] = sorted(names, true);
      EXPECT_EQ(OdString("Слой").toCodePage("windows-1251"), "\xD1\xEB\xEE\xE9");
      ++ready;
      while (!changed) std::this_thread::yield();
      after[t] = sorted(names, true);
    });
  }
  while (ready < 4) std::this_thread::yield();
  OdString::setCollationLocale("en_US");
  changed = true;
  for (auto& thread : threads) thread.join();
  const std::vector<std::string> english = sorted(names, true);
  EXPECT_NE(swedish, english);
  for (int t = 0; t < 4; ++t) {
    EXPECT_EQ(before[t], swedish) << "thread " << t;
    EXPECT_EQ(after[t], english) << "thread " << t;
  }
}

}  // namespace
