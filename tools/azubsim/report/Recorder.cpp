#include "tools/azubsim/report/Recorder.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tools/azubsim/report/Format.h"
#include "tools/common/Error.h"

namespace azubsim {

namespace {

using tools::Error;

// The reader of a pipe may be this far behind.
constexpr std::size_t maxUnwritten = 16777216;

// A pipe that is opened for reading too needs no reader yet.
int openFile(const std::string& path, bool overwrites) {
    struct stat status {};
    const bool exists = stat(path.c_str(), &status) == 0;
    if (exists && S_ISREG(status.st_mode) && !overwrites) {
        throw Error("the file exists; --force overwrites it");
    }
    const int access = exists && S_ISFIFO(status.st_mode) ? O_RDWR : O_WRONLY;
    const int file =
        open(path.c_str(), access | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0666);
    if (file < 0) {
        throw Error(std::strerror(errno));
    }
    return file;
}

} // namespace

Recorder::Recorder(const std::string& path, bool overwrites) : _path(path) {
    try {
        _file = openFile(path, overwrites);
    } catch (const Error& e) {
        throw Error("cannot record to " + path + ": " + e.what());
    }
    _unwritten = format::header();
    write();
}

Recorder::~Recorder() {
    if (_file >= 0) {
        close(_file);
    }
}

void Recorder::add(const Exchange& exchange) {
    if (_file < 0) {
        return;
    }
    _unwritten += format::write(exchange);
    write();
    if (_unwritten.size() > maxUnwritten) {
        fail("nobody reads it");
    }
}

void Recorder::finish() {
    pollfd polled{_file, POLLOUT, 0};
    while (_file >= 0 && !_unwritten.empty()) {
        if (poll(&polled, 1, 1000) == 0) {
            fail("nobody reads it");
        }
        write();
    }
}

void Recorder::write() {
    while (!_unwritten.empty()) {
        const ssize_t size = ::write(_file, _unwritten.data(), _unwritten.size());
        if (size < 0 && errno == EAGAIN) {
            return;
        }
        if (size < 0) {
            fail(std::strerror(errno));
        }
        _unwritten.erase(0, static_cast<std::size_t>(size));
    }
}

void Recorder::fail(const std::string& reason) {
    close(_file);
    _file = -1;
    _unwritten.clear();
    throw Error("cannot record to " + _path + ": " + reason);
}

} // namespace azubsim
