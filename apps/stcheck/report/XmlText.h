#pragma once

#include <string>

namespace stcheck {

// Escapes UTF-8 text for XML and HTML content and attribute values. Characters that XML 1.0
// does not allow at all (control characters other than tab, line feed and carriage return)
// become U+FFFD, so that a drawing's odd names never make a report unreadable.
std::string xmlEscape(const std::string& text);

}  // namespace stcheck
