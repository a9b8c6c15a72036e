#include "tools/azubsim/report/Recording.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "tools/azubsim/report/Format.h"
#include "tools/common/Error.h"

namespace azubsim {

using tools::Error;

Recorder::Recorder(const std::string& path)
    : _path(path), _file(std::fopen(path.c_str(), "wxe"), std::fclose) {
    write(format::header());
}

void Recorder::add(const Exchange& exchange) {
    if (_file) {
        write(format::write(exchange));
    }
}

void Recorder::write(const std::string& line) {
    if (!_file || std::fputs(line.c_str(), _file.get()) < 0 || std::fflush(_file.get()) != 0) {
        const std::string reason = std::strerror(errno);
        _file.reset();
        throw Error("cannot record to " + _path + ": " + reason);
    }
}

Recording::Recording(const std::string& path)
    : _path(path == "-" ? "/dev/stdin" : path), _file(_path) {
    tools::require(_file.is_open(), "cannot read " + _path + ": " + std::strerror(errno));
}

std::optional<Exchange> Recording::next() {
    try {
        if (_lines == 0 && readLine()) {
            format::checkHeader(std::exchange(_line, ""));
        }
        if (_lines == 0 || !readLine()) {
            return std::nullopt;
        }
        return format::read(std::exchange(_line, ""));
    } catch (const Error& e) {
        throw Error("cannot read " + _path + ": line " + std::to_string(_lines) + ": " + e.what());
    }
}

// Returns false at the end of what is there now.
bool Recording::readLine() {
    std::string more;
    // After an end, more may have been written.
    _file.clear();
    std::getline(_file, more);
    tools::require(!_file.bad(), std::strerror(errno));
    _line += more;
    const bool isWhole = _file.good();
    _lines += isWhole ? 1 : 0;
    return isWhole;
}

} // namespace azubsim
