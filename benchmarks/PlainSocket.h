#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>

namespace benchmarks {

/// A socket that is connected to the Unix-domain socket with this path, or -1. The caller closes
/// it.
inline int connectPlainly(const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path, sizeof(address.sun_path) - 1);
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    return connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 ? fd : -1;
}

} // namespace benchmarks
