#include "benchmarks/exchange/ServerProcess.h"

#include "tests/support/Listener.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>

namespace exchange {

namespace {

int checked(int result, const char* what) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
    return result;
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

ServerProcess::ServerProcess(const char* protocol) : _path(_directory.path() + "/socket") {
    const tests::Listener listener(_path);
    _process = checked(fork(), "fork");
    if (_process == 0) {
        become(protocol, listener.fd());
    }
}

ServerProcess::~ServerProcess() {
    kill(_process, SIGTERM);
    waitpid(_process, nullptr, 0);
}

} // namespace exchange
