#include "tools/azubsim/report/Recording.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tools/azubsim/report/Format.h"
#include "tools/common/Error.h"

namespace azubsim {

using tools::Error;

Recording::Recording(const std::string& path)
    : _path(path == "-" ? "standard input" : path),
      _file(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (_file < 0) {
        throw Error("cannot read " + _path + ": " + std::strerror(errno));
    }
}

Recording::~Recording() {
    if (_file != STDIN_FILENO) {
        close(_file);
    }
}

std::optional<Exchange> Recording::next() {
    std::string line;
    try {
        if (_lines == 0 && readLine(line)) {
            format::checkHeader(line);
        }
        if (!readLine(line)) {
            return std::nullopt;
        }
    } catch (const Error& e) {
        throw Error("cannot read " + _path + ": " + e.what());
    }
    try {
        return format::read(line);
    } catch (const Error& e) {
        throw Error("cannot read " + _path + ": line " + std::to_string(_lines) +
                    " is not a recorded exchange: " + e.what());
    }
}

// Returns false at the end of what is there now.
bool Recording::readLine(std::string& line) {
    char chunk[65536];
    std::size_t searched = 0;
    std::size_t end;
    while ((end = _unread.find('\n', searched)) == std::string::npos) {
        searched = _unread.size();
        const ssize_t size = read(_file, chunk, sizeof(chunk));
        if (size < 0) {
            throw Error(std::strerror(errno));
        }
        if (size == 0) {
            return false;
        }
        _unread.append(chunk, static_cast<std::size_t>(size));
    }
    line = _unread.substr(0, end);
    _unread.erase(0, end + 1);
    ++_lines;
    return true;
}

} // namespace azubsim
