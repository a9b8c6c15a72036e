#include "tests/support/Listener.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>

#include "tests/support/TemporaryDirectory.h"

namespace tests {

namespace {

bool bindTo(int fd, const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path));
    return bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
}

} // namespace

bool canCreateSocketFiles() {
    const TemporaryDirectory directory;
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    const bool isBound = bindTo(fd, directory.path() + "/socket");
    close(fd);
    return isBound;
}

Listener::Listener(const std::string& path) : _fd(socket(AF_UNIX, SOCK_STREAM, 0)) {
    if (!bindTo(_fd, path) || listen(_fd, 4) != 0) {
        std::abort();
    }
}

Listener::~Listener() {
    close(_fd);
}

int Listener::accept() const {
    return ::accept(_fd, nullptr, nullptr);
}

void Listener::stop() const {
    shutdown(_fd, SHUT_RDWR);
}

} // namespace tests
