#pragma once

#include <sys/stat.h>

#include <string>

namespace azubsim {

/// A listening Unix-domain socket and its file, which goes with it.
class SocketFile {
public:
    SocketFile() = default;
    ~SocketFile();

    SocketFile(const SocketFile&) = delete;
    SocketFile& operator=(const SocketFile&) = delete;

    /// Listens at `path`, where there is nothing yet, or a socket that nobody listens at any more
    /// and that is replaced. False, with the reason in `error`, if that cannot be.
    bool listen(const std::string& path, std::string& error);

    int descriptor() const { return _fd; }

private:
    int _fd = -1;
    std::string _path;
    struct stat _identity {};
};

} // namespace azubsim
