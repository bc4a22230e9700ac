#pragma once

#include <string>

namespace stcheck {

// Makes text from a drawing safe to print on a terminal: every control character (C0, DEL
// and the C1 range U+0080..U+009F) becomes "\xNN", NN its code in two lower-case hex digits,
// so a name holding ESC [ 31 m shows as "\x1b[31m" instead of colouring the terminal, and a
// line feed in a name cannot start a line of its own. A byte that is not part of valid UTF-8
// is shown the same way, since some terminals take a lone 0x9b for a control. Any other
// text, valid UTF-8 of every script included, is kept as it is.
std::string terminalSafe(const std::string& text);

}  // namespace stcheck
