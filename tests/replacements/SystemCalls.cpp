// _FORTIFY_SOURCE makes some of the replaced functions inline.
#undef _FORTIFY_SOURCE

#include "tests/replacements/SystemCalls.h"

#include <arpa/inet.h>
#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace tests {

thread_local SystemCalls systemCalls;
std::vector<useconds_t> pauses;

namespace {

// Whether this thread is inside an original. It may make calls of its own: Android's C library asks
// the network daemon about some sockets. Those calls must not count.
thread_local bool isInside = false;

// Returns whether the call must fail, and sets errno if so.
bool mustFail(Call call) {
    if (isInside || call != systemCalls.failing || systemCalls.failuresToCome == 0) {
        return false;
    }
    if (systemCalls.passing > 0) {
        --systemCalls.passing;
        return false;
    }
    --systemCalls.failuresToCome;
    systemCalls.hasFailed = true;
    errno = systemCalls.error;
    return true;
}

bool isSocket(int fd) {
    const int before = errno;
    struct stat status {};
    const bool result = fstat(fd, &status) == 0 && S_ISSOCK(status.st_mode);
    errno = before;
    return result;
}

// How many bytes one transfer may move.
std::size_t limited(int fd, std::size_t size) {
    return isSocket(fd) ? std::min(size, systemCalls.largestTransfer) : size;
}

// Calls the original of a replaced function. Under a sanitizer this is the sanitizer's version, so
// its checks still run.
template <auto replacement, typename... Arguments>
auto original(const char* name, Arguments... arguments) {
    const int before = errno;
    static const auto function = reinterpret_cast<decltype(replacement)>(dlsym(RTLD_NEXT, name));
    errno = before;
    const bool wasInside = std::exchange(isInside, true);
    const auto result = function(arguments...);
    isInside = wasInside;
    return result;
}

} // namespace

} // namespace tests

using namespace tests;

extern "C" int usleep(useconds_t microseconds) {
    pauses.push_back(microseconds);
    return 0;
}

// Whether these functions are declared noexcept depends on the C library.
extern "C" int inet_pton(int family, const char* text,
                         void* address) noexcept(noexcept(inet_pton(0, nullptr, nullptr))) {
    return mustFail(Call::ParseAddress) ? -1
                                        : original<::inet_pton>("inet_pton", family, text, address);
}

extern "C" int socket(int domain, int type, int protocol) noexcept(noexcept(socket(0, 0, 0))) {
    return mustFail(Call::Socket) ? -1 : original<::socket>("socket", domain, type, protocol);
}

extern "C" int shutdown(int fd, int how) noexcept(noexcept(shutdown(0, 0))) {
    ++systemCalls.shutdowns;
    return mustFail(Call::Shutdown) ? -1 : original<::shutdown>("shutdown", fd, how);
}

extern "C" int connect(int fd, const sockaddr* address, socklen_t size) {
    return mustFail(Call::Connect) ? -1 : original<::connect>("connect", fd, address, size);
}

extern "C" ssize_t write(int fd, const void* data, std::size_t size) {
    return isSocket(fd) && mustFail(Call::Write)
               ? -1
               : original<::write>("write", fd, data, limited(fd, size));
}

extern "C" ssize_t read(int fd, void* buffer, std::size_t size) {
    return isSocket(fd) && mustFail(Call::Read)
               ? -1
               : original<::read>("read", fd, buffer, limited(fd, size));
}

extern "C" int close(int fd) {
    const bool isWatched = isSocket(fd);
    const int result = original<::close>("close", fd);
    return isWatched && mustFail(Call::Close) ? -1 : result;
}
