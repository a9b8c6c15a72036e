#include "benchmarks/exchange/LogOutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace exchange {

namespace {

int openOutput(LogOutput::Kind kind) {
    const int fd = kind == LogOutput::Kind::File
                       ? open("/dev/shm", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600)
                       : open("/dev/null", O_RDWR | O_CLOEXEC);
    if (fd < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot open a log output");
    }
    return fd;
}

void discard(const __android_logger_data*, const char*) {}

} // namespace

LogOutput::LogOutput(Kind kind)
    : _fd(openOutput(kind)),
      _standardError(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)),
      _writer(kind == Kind::File ? &__android_log_stderr_logger : &discard) {}

LogOutput::~LogOutput() {
    restore();
    close(_standardError);
    close(_fd);
}

void LogOutput::install() {
    if (_writer != &discard && (ftruncate(_fd, 0) != 0 || lseek(_fd, 0, SEEK_SET) != 0)) {
        throw std::system_error(errno, std::generic_category(), "cannot empty the log file");
    }
    dup2(_fd, STDERR_FILENO);
    __android_log_set_logger(_writer);
}

void LogOutput::restore() {
    dup2(_standardError, STDERR_FILENO);
    __android_log_set_logger(&__android_log_stderr_logger);
}

std::size_t LogOutput::lines() const {
    std::ptrdiff_t count = 0;
    off_t position = 0;
    char buffer[65536];
    for (ssize_t n; (n = pread(_fd, buffer, sizeof(buffer), position)) > 0; position += n) {
        count += std::count(buffer, buffer + n, '\n');
    }
    return static_cast<std::size_t>(count);
}

} // namespace exchange
