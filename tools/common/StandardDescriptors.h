#pragma once

#include <fcntl.h>

namespace tools {

/// Opens standard descriptors that are closed, so that no socket gets their numbers. Writing to
/// them still fails.
inline void openStandardDescriptors() {
    for (int fd = 0; fd <= 2; ++fd) {
        if (fcntl(fd, F_GETFD) < 0) {
            static_cast<void>(open("/dev/null", O_RDONLY));
        }
    }
}

} // namespace tools
