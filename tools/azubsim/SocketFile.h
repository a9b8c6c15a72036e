#pragma once

#include <sys/stat.h>

#include <string>

namespace azubsim {

/// A listening Unix-domain socket and its file. The destructor removes both.
class SocketFile {
public:
    SocketFile() = default;
    ~SocketFile();

    SocketFile(const SocketFile&) = delete;
    SocketFile& operator=(const SocketFile&) = delete;

    /// Listens on `path`. A stale socket there is replaced; anything else there is an error.
    /// Returns false, with the reason in `error`, if it fails.
    bool listen(const std::string& path, std::string& error);

    int descriptor() const { return _fd; }

private:
    int _fd = -1;
    std::string _path;
    struct stat _identity {};
};

} // namespace azubsim
