#include "DxfTextCodec.h"

#include <cstdio>

#include "OdCodePageNames.h"

namespace {

constexpr const char* kDefaultCodePage = "windows-1252";

int hexValue(wchar_t c) noexcept {
  if (c >= L'0' && c <= L'9') return c - L'0';
  if (c >= L'A' && c <= L'F') return c - L'A' + 10;
  if (c >= L'a' && c <= L'f') return c - L'a' + 10;
  return -1;
}

// The value of four hex digits at text[at], or -1.
int hex4(const std::wstring& text, std::size_t at) noexcept {
  if (at + 4 > text.size()) return -1;
  int value = 0;
  for (std::size_t i = at; i < at + 4; ++i) {
    int digit = hexValue(text[i]);
    if (digit < 0) return -1;
    value = value * 16 + digit;
  }
  return value;
}

// Code pages of the \M+n escape, by n.
const char* multiByteCodePage(wchar_t n) {
  switch (n) {
    case L'1':
      return "ANSI_932";
    case L'2':
      return "ANSI_950";
    case L'3':
      return "ANSI_949";
    case L'4':
      return "ANSI_1361";
    case L'5':
      return "ANSI_936";
    default:
      return nullptr;
  }
}

bool isPlainAscii(std::string_view bytes) noexcept {
  for (unsigned char c : bytes)
    if (c >= 0x80 || c == '\\') return false;
  return true;
}

// Replaces \U+XXXX (and, when `multiByte`, \M+nXXXX) escapes in decoded text. A pair of
// \U+ escapes holding a surrogate pair becomes the one character they encode.
std::wstring expandEscapes(const std::wstring& text, bool multiByte) {
  std::wstring out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    wchar_t c = text[i];
    if (c == L'\\' && i + 2 < text.size() && text[i + 2] == L'+') {
      wchar_t kind = text[i + 1];
      if (kind == L'U' || kind == L'u') {
        int unit = hex4(text, i + 3);
        if (unit >= 0) {
          const std::size_t next = i + 7;
          if (unit >= 0xD800 && unit <= 0xDBFF && next + 7 <= text.size() && text[next] == L'\\' &&
              (text[next + 1] == L'U' || text[next + 1] == L'u') && text[next + 2] == L'+') {
            int low = hex4(text, next + 3);
            if (low >= 0xDC00 && low <= 0xDFFF) {
              out.push_back(
                  static_cast<wchar_t>(0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00)));
              i = next + 6;
              continue;
            }
          }
          bool surrogate = unit >= 0xD800 && unit <= 0xDFFF;
          out.push_back(surrogate ? L'\xFFFD' : static_cast<wchar_t>(unit));
          i += 6;
          continue;
        }
      } else if (multiByte && (kind == L'M' || kind == L'm') && i + 3 < text.size()) {
        const char* page = multiByteCodePage(text[i + 3]);
        int code = hex4(text, i + 4);
        if (page && code >= 0) {
          std::string icu = odDxfCodePageToIcu(page);
          char bytes[2] = {static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)};
          OdString decoded = icu.empty()
                                 ? OdString(L"\xFFFD")
                                 : OdString::fromCodePage(std::string_view(bytes, 2), icu.c_str());
          out += decoded.str();
          i += 7;
          continue;
        }
      }
    }
    out.push_back(c);
  }
  return out;
}

void appendEscape(std::string& out, unsigned unit) {
  char escape[16];
  std::snprintf(escape, sizeof escape, "\\U+%04X", unit & 0xFFFF);
  out += escape;
}

}  // namespace

DxfTextCodec::DxfTextCodec(std::string_view acadVersion, std::string_view dwgCodePage) {
  int release = 0;
  if (acadVersion.size() == 6 && acadVersion.substr(0, 2) == "AC") {
    for (char c : acadVersion.substr(2)) {
      if (c < '0' || c > '9') {
        release = 0;
        break;
      }
      release = release * 10 + (c - '0');
    }
  }
  utf8_ = release >= 1021;
  if (utf8_) {
    codePage_ = "UTF-8";
    return;
  }
  codePage_ = odDxfCodePageToIcu(dwgCodePage);
  // Files that say ASCII still hold western 8-bit names; windows-1252 reads them and is
  // ASCII for everything ASCII.
  if (codePage_.empty() || codePage_ == "US-ASCII") codePage_ = kDefaultCodePage;
}

OdString DxfTextCodec::decode(std::string_view bytes) const {
  if (isPlainAscii(bytes)) return OdString(std::wstring(bytes.begin(), bytes.end()));
  OdString decoded =
      utf8_ ? OdString::fromUtf8(bytes) : OdString::fromCodePage(bytes, codePage_.c_str());
  if (decoded.find(L'\\') < 0) return decoded;
  return OdString(expandEscapes(decoded.str(), !utf8_));
}

std::string DxfTextCodec::encode(const OdString& text) const {
  if (utf8_) return text.toUtf8();
  bool lossless = true;
  std::string encoded = text.toCodePage(codePage_.c_str(), &lossless);
  if (lossless) return encoded;
  // Some characters are not in the code page: encode one by one and escape those.
  encoded.clear();
  for (wchar_t c : text.str()) {
    if (c < 0x80) {
      encoded.push_back(static_cast<char>(c));
      continue;
    }
    bool ok = true;
    std::string one = OdString(c, 1).toCodePage(codePage_.c_str(), &ok);
    if (ok) {
      encoded += one;
    } else if (static_cast<unsigned>(c) > 0xFFFF) {
      unsigned v = static_cast<unsigned>(c) - 0x10000;
      appendEscape(encoded, 0xD800 + (v >> 10));
      appendEscape(encoded, 0xDC00 + (v & 0x3FF));
    } else {
      appendEscape(encoded, static_cast<unsigned>(c));
    }
  }
  return encoded;
}
