#include "tests/support/SystemCalls.h"

#include <dirent.h>
#include <sys/socket.h>
#include <sys/syscall.h>

#include <cerrno>

namespace tests {

std::vector<useconds_t> SystemCalls::pauses;
int SystemCalls::shutdowns = 0;
int SystemCalls::errnoAfterClose = 0;

void SystemCalls::reset() {
    pauses.clear();
    shutdowns = 0;
    errnoAfterClose = 0;
}

int openDescriptors() {
    int count = 0;
    DIR* const directory = opendir("/proc/self/fd");
    while (readdir(directory) != nullptr) {
        ++count;
    }
    closedir(directory);
    return count;
}

} // namespace tests

extern "C" int usleep(useconds_t microseconds) {
    tests::SystemCalls::pauses.push_back(microseconds);
    return 0;
}

extern "C" int shutdown(int fd, int how) noexcept {
    ++tests::SystemCalls::shutdowns;
    return static_cast<int>(syscall(SYS_shutdown, fd, how));
}

extern "C" int close(int fd) {
    const int result = static_cast<int>(syscall(SYS_close, fd));
    if (tests::SystemCalls::errnoAfterClose != 0) {
        errno = tests::SystemCalls::errnoAfterClose;
    }
    return result;
}
