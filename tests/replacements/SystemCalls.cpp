// With it some of the functions that are replaced here are inline.
#undef _FORTIFY_SOURCE

#include "tests/replacements/SystemCalls.h"

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>

namespace tests {

namespace {

struct State {
    int counts[6] = {};
    Call failing = Call::Socket;
    int passing = 0;
    int failuresToCome = 0;
    int failures = 0;
    int error = 0;
    std::size_t largestTransfer = SIZE_MAX;
};

thread_local State state;

// Counts the call. If it must fail, sets errno.
bool mustFail(Call call) {
    ++state.counts[static_cast<int>(call)];
    if (call != state.failing || state.failuresToCome == 0 || state.passing-- > 0) {
        return false;
    }
    state.passing = 0;
    --state.failuresToCome;
    ++state.failures;
    errno = state.error;
    return true;
}

bool isSocket(int fd) {
    const int before = errno;
    struct stat status {};
    const bool result = fstat(fd, &status) == 0 && S_ISSOCK(status.st_mode);
    errno = before;
    return result;
}

// The function that a replacement hides. Under a sanitizer that is the sanitizer's own, whose
// checks are kept.
template <typename Function>
Function* hidden(const char* name, Function*) {
    const int before = errno;
    void* const function = dlsym(RTLD_NEXT, name);
    errno = before;
    return reinterpret_cast<Function*>(function);
}

} // namespace

std::vector<useconds_t> SystemCalls::pauses;

void SystemCalls::reset() {
    state = State();
    pauses.clear();
}

int SystemCalls::count(Call call) {
    return state.counts[static_cast<int>(call)];
}

void SystemCalls::fail(Call call, int n, int error, int times) {
    state.failing = call;
    state.passing = n - 1;
    state.failuresToCome = times;
    state.error = error;
}

int SystemCalls::failures() {
    return state.failures;
}

void SystemCalls::limitTransfers(std::size_t largest) {
    state.largestTransfer = largest;
}

} // namespace tests

using tests::Call;
using tests::hidden;
using tests::isSocket;
using tests::mustFail;
using tests::state;

extern "C" int usleep(useconds_t microseconds) {
    tests::SystemCalls::pauses.push_back(microseconds);
    return 0;
}

// Whether these two are declared noexcept depends on the C library.
extern "C" int socket(int domain, int type, int protocol) noexcept(noexcept(socket(0, 0, 0))) {
    static const auto function = hidden("socket", socket);
    return mustFail(Call::Socket) ? -1 : function(domain, type, protocol);
}

extern "C" int shutdown(int fd, int how) noexcept(noexcept(shutdown(0, 0))) {
    static const auto function = hidden("shutdown", shutdown);
    return mustFail(Call::Shutdown) ? -1 : function(fd, how);
}

extern "C" int connect(int fd, const sockaddr* address, socklen_t size) {
    static const auto function = hidden("connect", connect);
    return mustFail(Call::Connect) ? -1 : function(fd, address, size);
}

extern "C" ssize_t write(int fd, const void* data, std::size_t size) {
    static const auto function = hidden("write", write);
    if (!isSocket(fd)) {
        return function(fd, data, size);
    }
    return mustFail(Call::Write) ? -1 : function(fd, data, std::min(size, state.largestTransfer));
}

extern "C" ssize_t read(int fd, void* buffer, std::size_t size) {
    static const auto function = hidden("read", read);
    if (!isSocket(fd)) {
        return function(fd, buffer, size);
    }
    return mustFail(Call::Read) ? -1 : function(fd, buffer, std::min(size, state.largestTransfer));
}

extern "C" int close(int fd) {
    static const auto function = hidden("close", close);
    const bool isWatched = isSocket(fd);
    const int result = function(fd);
    return isWatched && mustFail(Call::Close) ? -1 : result;
}
