// With it some of the functions that are replaced here are inline.
#undef _FORTIFY_SOURCE

#include "tests/support/SystemCalls.h"

#include <dirent.h>
#include <dlfcn.h>
#include <sys/socket.h>

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
    if (call != state.failing || state.failuresToCome == 0) {
        return false;
    }
    if (state.passing > 0) {
        --state.passing;
        return false;
    }
    --state.failuresToCome;
    ++state.failures;
    errno = state.error;
    return true;
}

// The function that a replacement stands in front of. Under a sanitizer that is the sanitizer's
// own replacement, whose checks are kept.
template <typename Function>
Function* next(const char* name) {
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

using tests::Call;
using tests::mustFail;
using tests::next;
using tests::state;

extern "C" int usleep(useconds_t microseconds) {
    tests::SystemCalls::pauses.push_back(microseconds);
    return 0;
}

extern "C" int socket(int domain, int type, int protocol) noexcept {
    static const auto function = next<decltype(socket)>("socket");
    return mustFail(Call::Socket) ? -1 : function(domain, type, protocol);
}

extern "C" int connect(int fd, const sockaddr* address, socklen_t size) {
    static const auto function = next<decltype(connect)>("connect");
    return mustFail(Call::Connect) ? -1 : function(fd, address, size);
}

extern "C" ssize_t write(int fd, const void* data, std::size_t size) {
    static const auto function = next<decltype(write)>("write");
    return mustFail(Call::Write) ? -1 : function(fd, data, std::min(size, state.largestTransfer));
}

extern "C" ssize_t read(int fd, void* buffer, std::size_t size) {
    static const auto function = next<decltype(read)>("read");
    return mustFail(Call::Read) ? -1 : function(fd, buffer, std::min(size, state.largestTransfer));
}

extern "C" int shutdown(int fd, int how) noexcept {
    static const auto function = next<decltype(shutdown)>("shutdown");
    return mustFail(Call::Shutdown) ? -1 : function(fd, how);
}

extern "C" int close(int fd) {
    static const auto function = next<decltype(close)>("close");
    const int result = function(fd);
    return mustFail(Call::Close) ? -1 : result;
}
