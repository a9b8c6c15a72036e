#include "benchmarks/start/AnswerServer.h"

#include "tests/support/Frames.h"
#include "tests/support/Listener.h"

#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace benchmarks {

namespace {

// A request arrives in one piece: its sender waits for the answer before it sends more.
void serve(int client, const std::string& answer) {
    char request[512];
    while (read(client, request, sizeof(request)) > 0 &&
           send(client, answer.data(), answer.size(), MSG_NOSIGNAL) >= 0) {
    }
    close(client);
}

[[noreturn]] void run(int listener) {
    // Also where the benchmark ends without destroying its objects.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const std::string answer = tests::timestampsFrame(
        "16963814587331346432", "16963814588104458240", "16963814587674943488", "60");
    for (;;) {
        serve(accept(listener, nullptr, nullptr), answer);
    }
}

} // namespace

AnswerServer::AnswerServer() : _pid(-1) {
    const tests::Listener listener(path());
    _pid = fork();
    if (_pid == 0) {
        run(listener.fd());
    }
}

AnswerServer::~AnswerServer() {
    if (_pid > 0) {
        kill(_pid, SIGKILL);
        waitpid(_pid, nullptr, 0);
    }
}

} // namespace benchmarks
