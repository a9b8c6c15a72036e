#include "benchmarks/exchange/ServerProcess.h"

#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>

namespace exchange {

namespace {

int checked(int result, const char* what) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
    return result;
}

std::string makeDirectory() {
    char path[] = "/tmp/bench_exchange.XXXXXX";
    if (mkdtemp(path) == nullptr) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    return path;
}

int listenAt(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    const int fd = checked(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
    checked(bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), "bind");
    checked(listen(fd, 1), "listen");
    return fd;
}

[[noreturn]] void become(const char* protocol, int listener) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    dup2(listener, STDIN_FILENO);
    // Not the connections of other contestants.
    close_range(STDERR_FILENO + 1, ~0U, 0);
    execl(EXCHANGE_SERVER, "exchange_server", protocol, nullptr);
    _exit(EXIT_FAILURE);
}

} // namespace

ServerProcess::ServerProcess(const char* protocol)
    : _directory(makeDirectory()), _path(_directory + "/socket") {
    const int listener = listenAt(_path);
    _process = checked(fork(), "fork");
    if (_process == 0) {
        become(protocol, listener);
    }
    close(listener);
}

ServerProcess::~ServerProcess() {
    kill(_process, SIGTERM);
    waitpid(_process, nullptr, 0);
    unlink(_path.c_str());
    rmdir(_directory.c_str());
}

} // namespace exchange
