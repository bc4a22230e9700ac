#include "TerminalText.h"

namespace stcheck {

namespace {

void appendHex(std::string& out, unsigned code) {
  static const char kDigits[] = "0123456789abcdef";
  out += "\\x";
  out += kDigits[(code >> 4) & 15];
  out += kDigits[code & 15];
}

// The length of the valid UTF-8 sequence starting at text[at], or 0 when there is none.
std::size_t sequenceLength(const std::string& text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(at);
  std::size_t length = 0;
  unsigned char low = 0x80, high = 0xBF;  // the range of the second byte
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;   // no overlong forms
    if (lead == 0xED) high = 0x9F;  // no surrogates
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;  // nothing above U+10FFFF
  } else {
    return 0;
  }
  if (at + length > text.size()) return 0;
  if (byte(at + 1) < low || byte(at + 1) > high) return 0;
  for (std::size_t i = 2; i < length; ++i)
    if (byte(at + i) < 0x80 || byte(at + i) > 0xBF) return 0;
  return length;
}

}  // namespace

std::string terminalSafe(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const auto c = static_cast<unsigned char>(text[at]);
    if (c < 0x80) {
      if (c < 0x20 || c == 0x7F)
        appendHex(out, c);
      else
        out += static_cast<char>(c);
      ++at;
      continue;
    }
    const std::size_t length = sequenceLength(text, at);
    if (length == 0) {
      appendHex(out, c);
      ++at;
    } else if (length == 2 && c == 0xC2 && static_cast<unsigned char>(text[at + 1]) < 0xA0) {
      appendHex(out, static_cast<unsigned char>(text[at + 1]));  // U+0080..U+009F
      at += 2;
    } else {
      out.append(text, at, length);
      at += length;
    }
  }
  return out;
}

}  // namespace stcheck
