#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

// A Unicode text. Stored as wide characters (one code point each on this platform), so
// indexes and lengths count code points. Narrow text given without a code page is UTF-8.
//
// Comparison comes in three strengths:
//  - compare: code point order, exact;
//  - iCompare: case-insensitive for all of Unicode (full case folding: "Straße" equals
//    "STRASSE", "Ω" equals "ω");
//  - collate / iCollate: the user's locale collation order, for sorting names as a user
//    expects ("a" < "B" < "c", "é" next to "e").
// Code-page conversion names a code page as ICU knows it ("windows-1252", "cp936",
// "ibm-943_P15A-2003", "UTF-8"); an unknown name throws OdError(eUnknownCodePage).
class OdString {
 public:
  OdString() = default;
  OdString(const wchar_t* text);              // null gives the empty string
  OdString(const wchar_t* text, int length);  // a negative length reads to the terminator
  OdString(std::wstring text) : text_(std::move(text)) {}
  OdString(std::wstring_view text) : text_(text) {}
  OdString(const char* utf8);  // null gives the empty string; invalid bytes become U+FFFD
  OdString(const std::string& utf8);
  OdString(wchar_t ch, int repeat);

  static OdString fromUtf8(std::string_view utf8);
  std::string toUtf8() const;
  // Decodes bytes in the given code page; bytes it cannot decode become ICU's substitute
  // (U+FFFD, or U+001A in single-byte code pages that define that). Throws
  // OdError(eUnknownCodePage), naming it, for a code page ICU does not have (null and ""
  // included).
  static OdString fromCodePage(std::string_view bytes, const char* codePage);
  // Encodes in the given code page. Characters the code page lacks become its substitute
  // character; `lossless`, when given, says whether every character was representable.
  // Throws as fromCodePage does.
  std::string toCodePage(const char* codePage, bool* lossless = nullptr) const;

  // printf-style formatting with a wide format: %ls takes const wchar_t*, %s takes a
  // narrow const char* that the C library converts in the current C locale (so pass
  // non-ASCII text as %ls, or use the UTF-8 overload). A null format gives the empty
  // string; an argument the C library cannot convert throws OdError(eInvalidInput).
  static OdString format(const wchar_t* fmt, ...);
  // The same with a UTF-8 format; %s takes UTF-8 text, invalid bytes become U+FFFD.
  static OdString format(const char* fmt, ...);

  const wchar_t* c_str() const noexcept { return text_.c_str(); }
  operator const wchar_t*() const noexcept { return text_.c_str(); }
  const std::wstring& str() const noexcept { return text_; }
  int getLength() const noexcept { return static_cast<int>(text_.size()); }
  bool isEmpty() const noexcept { return text_.empty(); }
  void empty() noexcept { text_.clear(); }
  // Unchecked like operator[] of the standard library; getAt checks and throws
  // OdError_InvalidIndex.
  wchar_t operator[](int index) const { return text_[static_cast<std::size_t>(index)]; }
  wchar_t getAt(int index) const;

  // All four return -1, 0 or 1.
  int compare(const OdString& other) const noexcept;
  int iCompare(const OdString& other) const;
  int collate(const OdString& other) const;
  int iCollate(const OdString& other) const;  // accents count, case does not

  // The locale of collate / iCollate, for every thread. By default it comes from the
  // environment (LC_ALL, then LC_COLLATE, then LANG; "C" and "POSIX" mean the root
  // collation, which already sorts "a" < "B" < "c" and "e" < "é" < "f"), read at the first
  // comparison. A name such as "de_DE", "sv-SE" or "de_DE.UTF-8" overrides it; null or ""
  // returns to the environment and reads it again.
  static void setCollationLocale(const char* localeName);
  // The ICU name of the collation locale asked for ("de_DE", "root"). ICU collates with the
  // nearest locale it has data for: the root collation for a name it does not know.
  static std::string collationLocale();

  // Position of the first occurrence at or after `start` (a negative start counts as 0), or
  // -1; an empty `what` is found at `start` itself unless that lies past the end.
  int find(const OdString& what, int start = 0) const noexcept;
  int find(wchar_t ch, int start = 0) const noexcept;
  int reverseFind(wchar_t ch) const noexcept;  // the last position, or -1
  // Substrings clamp their arguments to the text, as callers slicing names expect: a
  // negative start counts as 0, a negative count of mid means "to the end", and a start or
  // count past the end gives what there is (possibly nothing). Never throw for indexes.
  OdString mid(int start, int count = -1) const;
  OdString left(int count) const;
  OdString right(int count) const;
  // Full Unicode case mapping ("ß" upper-cases to "SS", a final "Σ" lower-cases to "ς"),
  // the same in every locale so that a name maps alike for every user.
  OdString& makeUpper();
  OdString& makeLower();
  // Remove Unicode white space (the no-break and ideographic spaces included).
  OdString& trimLeft();
  OdString& trimRight();
  // Replaces every occurrence, left to right, without rescanning what was put in; returns
  // how many were replaced (0 for an empty `what`).
  int replace(const OdString& what, const OdString& with);
  // Both clamp as the substrings do: deleting past the end deletes what there is,
  // inserting past the end appends.
  OdString& deleteChars(int index, int count = 1);
  OdString& insert(int index, const OdString& text);

  OdString& operator+=(const OdString& other) {
    text_ += other.text_;
    return *this;
  }
  OdString& operator+=(wchar_t ch) {
    text_ += ch;
    return *this;
  }
  friend OdString operator+(OdString a, const OdString& b) { return a += b; }
  friend bool operator==(const OdString& a, const OdString& b) noexcept {
    return a.text_ == b.text_;
  }
  friend bool operator==(const OdString& a, const wchar_t* b) noexcept {
    return b ? a.text_ == b : a.text_.empty();
  }
  friend bool operator<(const OdString& a, const OdString& b) noexcept { return a.text_ < b.text_; }

 private:
  std::wstring text_;
};

template <>
struct std::hash<OdString> {
  std::size_t operator()(const OdString& s) const noexcept {
    return std::hash<std::wstring>()(s.str());
  }
};

// A narrow text in some code page that only its owner knows. Kept as bytes.
class OdAnsiString {
 public:
  OdAnsiString() = default;
  OdAnsiString(const char* text) : text_(text ? text : "") {}
  OdAnsiString(std::string text) : text_(std::move(text)) {}

  const char* c_str() const noexcept { return text_.c_str(); }
  operator const char*() const noexcept { return text_.c_str(); }
  const std::string& str() const noexcept { return text_; }
  int getLength() const noexcept { return static_cast<int>(text_.size()); }
  bool isEmpty() const noexcept { return text_.empty(); }
  // ASCII-only case-insensitive byte comparison, as for names whose code page is unknown.
  int iCompare(const OdAnsiString& other) const noexcept;

  friend bool operator==(const OdAnsiString& a, const OdAnsiString& b) noexcept {
    return a.text_ == b.text_;
  }

 private:
  std::string text_;
};
