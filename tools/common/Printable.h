#pragma once

#include <string>

namespace tools {

/// Makes text from another program safe for a terminal. A newline becomes `\n`; every byte of a
/// control character, of an invisible one or one that changes the direction of text, of any other
/// that the locale cannot print, or of an invalid sequence becomes `\xNN`. The rest stays. Uses the
/// program's LC_CTYPE: call `setlocale` first.
std::string printable(const std::string& text);

} // namespace tools
