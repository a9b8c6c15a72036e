#include "tools/azubsim/Screen.h"

#include <poll.h>
#include <unistd.h>

#include <iostream>
#include <sstream>
#include <utility>

#include "tools/azubsim/LineEditor.h"
#include "tools/common/Printable.h"

namespace azubsim {

void Screen::say(const std::string& text) {
    print(std::cout, text);
}

void Screen::warn(const std::string& text) {
    print(std::cerr, "azubsim: " + text);
}

void Screen::sayIfRead(const std::string& line) {
    pollfd polled{STDOUT_FILENO, POLLOUT, 0};
    if (poll(&polled, 1, 0) == 0) {
        ++_leftOut;
        return;
    }
    if (_leftOut > 0) {
        say("azubsim: nobody read the output; " + std::to_string(std::exchange(_leftOut, 0)) +
            " lines were left out");
    }
    say(line);
}

void Screen::print(std::ostream& stream, const std::string& text) {
    const bool hasPrompt = _editor != nullptr && _editor->hide();
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        stream << tools::printable(line) << '\n';
    }
    stream << std::flush;
    if (hasPrompt) {
        _editor->show();
    }
}

} // namespace azubsim
