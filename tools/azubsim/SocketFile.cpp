#include "tools/azubsim/SocketFile.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace azubsim {

namespace {

int newSocket() {
    return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

// Returns 0 if a process listens on the address, otherwise the errno of the attempt.
int tryConnecting(const sockaddr_un& address) {
    const int fd = newSocket();
    const bool connected =
        connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    const int error = connected ? 0 : errno;
    close(fd);
    return error;
}

// Removes a stale socket; fails if anything else is there.
bool clearTheWay(const sockaddr_un& address, std::string& error) {
    struct stat status {};
    if (lstat(address.sun_path, &status) != 0) {
        return true;
    }
    if (!S_ISSOCK(status.st_mode)) {
        error = "it exists and is not a socket";
        return false;
    }
    const int reason = tryConnecting(address);
    if (reason == 0) {
        error = "an engine is already listening there";
        return false;
    }
    if (reason != ECONNREFUSED || unlink(address.sun_path) != 0) {
        error = std::strerror(reason != ECONNREFUSED ? reason : errno);
        return false;
    }
    return true;
}

} // namespace

SocketFile::~SocketFile() {
    if (_fd < 0) {
        return;
    }
    close(_fd);
    // Keep a file that another process has put in its place.
    struct stat status {};
    if (lstat(_path.c_str(), &status) == 0 && status.st_dev == _identity.st_dev &&
        status.st_ino == _identity.st_ino) {
        unlink(_path.c_str());
    }
}

bool SocketFile::listen(const std::string& path, std::string& error) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof(address.sun_path)) {
        error = "a socket path must have 1 to " + std::to_string(sizeof(address.sun_path) - 1) +
                " bytes";
        return false;
    }
    std::memcpy(address.sun_path, path.data(), path.size());
    if (!clearTheWay(address, error)) {
        return false;
    }
    const int fd = newSocket();
    if (fd < 0 || bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        error = std::strerror(errno);
        if (fd >= 0) {
            close(fd);
        }
        return false;
    }
    _fd = fd;
    _path = path;
    lstat(_path.c_str(), &_identity);
    if (::listen(fd, SOMAXCONN) != 0) {
        error = std::strerror(errno);
        return false;
    }
    return true;
}

} // namespace azubsim
