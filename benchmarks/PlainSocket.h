#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>

namespace benchmarks {

/// Connects to the Unix-domain socket at `path`. The caller closes the descriptor. Returns -1 on
/// failure.
inline int connectPlainly(const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path, sizeof(address.sun_path) - 1);
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    return connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 ? fd : -1;
}

} // namespace benchmarks
