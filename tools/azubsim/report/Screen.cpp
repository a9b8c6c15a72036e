#include "tools/azubsim/report/Screen.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <sstream>
#include <utility>

#include "tools/common/Printable.h"
#include "tools/common/Text.h"

namespace azubsim {

namespace {

// A pipe takes this many bytes at once or none of them.
constexpr std::size_t maxShownLine = 4000;

// A terminal or a pipe is opened again, because other programs share the flags of the descriptor
// that this one was given. If that is not possible, asking before each write has to do.
int openWithoutBlocking(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode))) {
        const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
        const int own = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        if (own >= 0) {
            return own;
        }
    }
    return fcntl(descriptor, F_DUPFD_CLOEXEC, 3);
}

bool isReady(int descriptor) {
    pollfd polled{descriptor, POLLOUT, 0};
    return poll(&polled, 1, 0) != 0;
}

} // namespace

Screen::Screen()
    : _output{openWithoutBlocking(STDOUT_FILENO)}, _errors{openWithoutBlocking(STDERR_FILENO)} {}

Screen::~Screen() {
    ::close(_output.descriptor);
    ::close(_errors.descriptor);
}

void Screen::say(const std::string& line) {
    print(_output, line);
}

void Screen::sayLines(const std::string& lines) {
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
    if (!isReady(stream.descriptor)) {
        ++stream.leftOut;
        return;
    }
    std::string text = std::exchange(stream.isCut, false) ? "\n" : "";
    if (stream.leftOut > 0) {
        text += "azubsim: nobody read the output; " +
                std::to_string(std::exchange(stream.leftOut, 0)) + " lines were left out\n";
    }
    const std::string shown = tools::printable(line).substr(0, maxShownLine);
    write(stream, text + tools::broken(shown, tools::terminalColumns(stream.descriptor)) + '\n');
}

void Screen::write(Stream& stream, const std::string& text) {
    const ssize_t size = ::write(stream.descriptor, text.data(), text.size());
    if (size == static_cast<ssize_t>(text.size())) {
        return;
    }
    if (size >= 0 || errno == EAGAIN || errno == EINTR) {
        stream.isCut = size > 0;
        ++stream.leftOut;
        return;
    }
    stream.isLost = true;
    if (&stream == &_output && lost) {
        lost(std::strerror(errno));
    }
}

} // namespace azubsim
