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

// The original of a replaced function. Under a sanitizer this is the sanitizer's version, so its
// checks still run.
template <typename Function>
Function* hidden(const char* name, Function*) {
    const int before = errno;
    void* const function = dlsym(RTLD_NEXT, name);
    errno = before;
    return reinterpret_cast<Function*>(function);
}

template <typename Function, typename... Arguments>
auto pass(Function* original, Arguments... arguments) {
    const bool wasInside = std::exchange(isInside, true);
    const auto result = original(arguments...);
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
    static const auto function = hidden("inet_pton", inet_pton);
    return mustFail(Call::ParseAddress) ? -1 : pass(function, family, text, address);
}

extern "C" int socket(int domain, int type, int protocol) noexcept(noexcept(socket(0, 0, 0))) {
    static const auto function = hidden("socket", socket);
    return mustFail(Call::Socket) ? -1 : pass(function, domain, type, protocol);
}

extern "C" int shutdown(int fd, int how) noexcept(noexcept(shutdown(0, 0))) {
    static const auto function = hidden("shutdown", shutdown);
    ++systemCalls.shutdowns;
    return mustFail(Call::Shutdown) ? -1 : pass(function, fd, how);
}

extern "C" int connect(int fd, const sockaddr* address, socklen_t size) {
    static const auto function = hidden("connect", connect);
    return mustFail(Call::Connect) ? -1 : pass(function, fd, address, size);
}

extern "C" ssize_t write(int fd, const void* data, std::size_t size) {
    static const auto function = hidden("write", write);
    return isSocket(fd) && mustFail(Call::Write) ? -1 : pass(function, fd, data, limited(fd, size));
}

extern "C" ssize_t read(int fd, void* buffer, std::size_t size) {
    static const auto function = hidden("read", read);
    return isSocket(fd) && mustFail(Call::Read) ? -1
                                                : pass(function, fd, buffer, limited(fd, size));
}

extern "C" int close(int fd) {
    static const auto function = hidden("close", close);
    const bool isWatched = isSocket(fd);
    const int result = pass(function, fd);
    return isWatched && mustFail(Call::Close) ? -1 : result;
}
