#include "tools/azubsim/Screen.h"

#include <iostream>

#include "tools/azubsim/LineEditor.h"
#include "tools/common/Printable.h"

namespace azubsim {

void Screen::say(const std::string& line) {
    print(std::cout, line);
}

void Screen::warn(const std::string& line) {
    print(std::cerr, "azubsim: " + tools::printable(line));
}

void Screen::print(std::ostream& stream, const std::string& line) {
    const bool hasPrompt = _editor != nullptr && _editor->hide();
    stream << line;
    if (line.empty() || line.back() != '\n') {
        stream << '\n';
    }
    stream << std::flush;
    if (hasPrompt) {
        _editor->show();
    }
}

} // namespace azubsim
