#include "XmlText.h"

namespace stcheck {

std::string xmlEscape(const std::string& text) {
  std::string out;
  out.reserve(text.size() + text.size() / 8);
  for (unsigned char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&#39;";
        break;
      default:
        if (c < 0x20 && c != '\t' && c != '\n' && c != '\r')
          out += "\xEF\xBF\xBD";
        else
          out += static_cast<char>(c);
    }
  }
  return out;
}

}  // namespace stcheck
