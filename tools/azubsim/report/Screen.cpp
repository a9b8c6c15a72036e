#include "tools/azubsim/report/Screen.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <sstream>

#include "tools/common/Text.h"

namespace azubsim {

namespace {

// A pipe takes this many bytes at once or none of them.
constexpr std::size_t maxShownLine = 4000;

ssize_t writeAtOnce(int descriptor, const std::string& text) {
    const ssize_t size = send(descriptor, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    return size < 0 && errno == ENOTSOCK ? write(descriptor, text.data(), text.size()) : size;
}

} // namespace

int openAgain(int descriptor, int access) {
    struct stat status {};
    if (fstat(descriptor, &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode))) {
        const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
        const int own = open(path.c_str(), access | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        if (own >= 0) {
            return own;
        }
    }
    return fcntl(descriptor, F_DUPFD_CLOEXEC, 3);
}

Screen::Screen()
    : _output{openAgain(STDOUT_FILENO, O_WRONLY)}, _errors{openAgain(STDERR_FILENO, O_WRONLY)} {}

Screen::~Screen() {
    ::close(_output.descriptor);
    ::close(_errors.descriptor);
}

void Screen::say(const std::string& lines) {
    std::istringstream stream(lines);
    for (std::string line; std::getline(stream, line);) {
        print(_output, line);
    }
}

void Screen::warn(const std::string& line) {
    print(_errors, "azubsim: " + line);
}

void Screen::print(Stream& stream, const std::string& line) {
    if (stream.isLost) {
        return;
    }
    std::string text = stream.isCut ? "\n" : "";
    if (stream.leftOut > 0) {
        text += "azubsim: nobody read the output; " + std::to_string(stream.leftOut) +
                " lines were left out\n";
    }
    const std::string shown = tools::printable(line).substr(0, maxShownLine);
    text += tools::broken(shown, tools::terminalColumns(stream.descriptor)) + '\n';
    const ssize_t size = writeAtOnce(stream.descriptor, text);
    if (size == static_cast<ssize_t>(text.size())) {
        stream.leftOut = 0;
        stream.isCut = false;
    } else if (size >= 0 || errno == EAGAIN || errno == EINTR) {
        ++stream.leftOut;
        stream.isCut = stream.isCut || size > 0;
    } else {
        stream.isLost = true;
        if (&stream == &_output && lost) {
            lost(std::strerror(errno));
        }
    }
}

} // namespace azubsim
