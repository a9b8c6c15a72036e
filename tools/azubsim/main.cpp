#include <sys/signalfd.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string>

#include "tools/azubsim/AudioEngine.h"
#include "tools/azubsim/Protocol.h"
#include "tools/azubsim/Server.h"
#include "tools/azubsim/SocketFile.h"

namespace {

using namespace azubsim;

constexpr int exitUsage = 2;

struct Options {
    std::string socket;
    bool noCall = false;
};

Reply answer(AudioEngine& engine, const std::string& text) {
    Request request;
    std::string error;
    if (!parseRequest(text, request, error)) {
        std::cerr << "azubsim: closing a connection: bad request: " << error << std::endl;
        return {"", true};
    }
    if (request.command == Request::Command::SetAudioDelay) {
        return {delayAnswer(engine.setMargin(request.delayMs)), false};
    }
    Timestamps timestamps;
    const Verdict verdict = engine.timestamps(AudioEngine::Clock::now(), timestamps);
    return {timestampsAnswer(timestamps, verdict), false};
}

// Becomes readable when the process is asked to end.
int endSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

int run(const Options& options) {
    const int end = endSignals();
    SocketFile file;
    std::string error;
    if (!file.listen(options.socket, error)) {
        std::cerr << "azubsim: cannot listen at " << options.socket << ": " << error << '\n';
        return EXIT_FAILURE;
    }
    std::cout << "azubsim: listening at " << options.socket << std::endl;
    AudioEngine engine(!options.noCall);
    Server server(file.descriptor(), [&](const std::string& text) { return answer(engine, text); });
    server.run(end);
    close(end);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app(
        "A stand-in for the audio engine: answers lip-sync requests on a Unix-domain "
        "socket until it is interrupted.");
    app.add_option("--socket", options.socket,
                   "Path to listen at; nothing may be there but a socket that nobody uses any "
                   "more; required")
        ->type_name("PATH");
    app.add_flag("--no-call", options.noCall,
                 "Be in no call: every request is answered with error code 1003");
    try {
        app.parse(argc, argv);
        // Not left to the parser, which would complain of this before it names a wrong option.
        if (options.socket.empty()) {
            throw CLI::RequiredError("--socket");
        }
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? EXIT_SUCCESS : exitUsage;
    }
    return run(options);
}
