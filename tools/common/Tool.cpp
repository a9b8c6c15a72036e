#include "tools/common/Tool.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstring>
#include <iostream>

#include "tools/common/Error.h"
#include "tools/common/Printable.h"
#include "tools/common/Text.h"

namespace tools {

namespace {

std::string toolName;

// No socket may get the number of a standard descriptor. Writing to such a descriptor still fails.
void openStandardDescriptors() {
    for (int fd = 0; fd <= 2; ++fd) {
        if (fcntl(fd, F_GETFD) < 0) {
            static_cast<void>(open("/dev/null", O_RDONLY));
        }
    }
}

} // namespace

int runTool(const char* name, const std::function<int()>& body) {
    toolName = name;
    openStandardDescriptors();
    std::setlocale(LC_CTYPE, "");
    // Writing to a program that has gone must not kill this process.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const int status = body();
        checkOutput();
        return status;
    } catch (const Error& e) {
        complain(e.what());
        return e.exitStatus();
    }
}

void complain(const std::string& text) {
    // One write for the whole line.
    const std::string line = toolName + ": " + printable(text);
    std::cerr << broken(line, terminalColumns(STDERR_FILENO)) + '\n';
}

void checkOutput() {
    errno = 0;
    if (!std::cout.flush()) {
        throw Error(std::string("cannot write to standard output") +
                    (errno != 0 ? std::string(": ") + std::strerror(errno) : ""));
    }
}

} // namespace tools
