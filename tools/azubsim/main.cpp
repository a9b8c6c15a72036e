#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string>

#include "tools/azubsim/Console.h"
#include "tools/azubsim/Options.h"
#include "tools/azubsim/Server.h"
#include "tools/azubsim/Simulator.h"
#include "tools/azubsim/SocketFile.h"

namespace {

using namespace azubsim;

// Returns a descriptor that becomes readable on a termination signal.
int endSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGHUP);
    sigaddset(&signals, SIGQUIT);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    // Reading from the terminal in the background must not stop the process.
    std::signal(SIGTTIN, SIG_IGN);
    // Writing to a closed pipe must not kill it.
    std::signal(SIGPIPE, SIG_IGN);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

void configure(const Options& options, Simulator& simulator) {
    for (const Fault& fault : options.faults) {
        simulator.faults.add(fault);
    }
    simulator.faults.setEvery(options.every);
    if (options.seed) {
        simulator.faults.setSeed(*options.seed);
    }
    simulator.engine.setInCall(!options.noCall);
    simulator.floodBytes = options.floodBytes;
    simulator.isVerbose = options.isVerbose;
}

int fail(const std::string& what, const std::string& why) {
    std::cerr << "azubsim: " << what << ": " << why << '\n';
    return EXIT_FAILURE;
}

int run(const Options& options, Simulator& simulator) {
    const int end = endSignals();
    std::string error;
    if (!options.replayFile.empty() &&
        !simulator.replay.emplace().open(options.replayFile, error)) {
        return fail("cannot replay " + options.replayFile, error);
    }
    SocketFile file;
    if (!file.listen(options.socket, error)) {
        return fail("cannot listen at " + options.socket, error);
    }
    if (!options.recordFile.empty() && !simulator.recorder.open(options.recordFile)) {
        return fail("cannot record to " + options.recordFile,
                    "the file cannot be opened for writing");
    }
    std::cout << "azubsim: listening at " << options.socket << std::endl;
    Server server(file.descriptor(), [&](int client, const std::string& request) {
        return simulator.answer(client, request);
    });
    Console console(simulator);
    console.prompt();
    server.watch(end, [&] {
        server.stop();
        return false;
    });
    server.watch(STDIN_FILENO, [&] {
        const bool goesOn = console.read();
        if (console.wantsToQuit()) {
            server.stop();
        }
        return goesOn;
    });
    server.run();
    close(end);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    if (const auto status = readOptions(argc, argv, options)) {
        return *status;
    }
    Simulator simulator;
    configure(options, simulator);
    return run(options, simulator);
}
