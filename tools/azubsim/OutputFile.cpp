#include "tools/azubsim/OutputFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace azubsim {

bool OutputFile::open(const std::string& path, bool force, std::string& error) {
    // A terminal, a pipe or a device has no contents to lose.
    std::error_code ignored;
    if (!force && std::filesystem::is_regular_file(path, ignored)) {
        error = "the file exists; --force overwrites it";
        return false;
    }
    _file.open(path, std::ios::binary);
    if (!_file.is_open()) {
        error = std::strerror(errno);
        return false;
    }
    return true;
}

bool OutputFile::write(const std::string& text) {
    if (!_file.is_open()) {
        return true;
    }
    _file << text << std::flush;
    if (!_file.good()) {
        _file.close();
        return false;
    }
    return true;
}

} // namespace azubsim
