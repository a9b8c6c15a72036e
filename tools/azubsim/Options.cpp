#include "tools/azubsim/Options.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "tools/azubsim/Help.h"
#include "tools/manual/CommandLine.h"
#include "tools/manual/HelpFormatter.h"

namespace azubsim {

namespace {

void readFaults(Options& options) {
    for (const std::string& text : options.faultTexts) {
        std::string error;
        if (!Fault::parse(text, options.faults.emplace_back(), error)) {
            throw CLI::ValidationError("--fault", error);
        }
    }
}

} // namespace

void declareOptions(CLI::App& app, Options& options) {
    app.name("azubsim");
    app.formatter(std::make_shared<manual::HelpFormatter>());
    app.description(
        "A stand-in for the audio engine: answers lip-sync requests on a Unix-domain socket, with "
        "believable timestamps or with any fault, until it is interrupted. Lines on standard input "
        "change it while it runs; \"help\" lists them.");
    app.add_option("--socket", options.socket,
                   "Path to listen at; nothing may be there but a socket that nobody uses any "
                   "more, which is replaced; required")
        ->type_name("PATH");
    app.add_flag("--no-call", options.noCall,
                 "Be in no call: the verdict on every request is 1003");
    app.add_option("--fault", options.faultTexts,
                   "Spoil answers so; may be given several times, and the faults take turns")
        ->type_name("FAULT")
        ->expected(1)
        ->take_all();
    app.add_option("--every", options.every, "Spoil one answer in N, and not every one")
        ->type_name("N")
        ->check(CLI::Range(1, 1000000000));
    app.add_option("--seed", options.seed,
                   "Choose answers and faults at random, the same ones each time for the same seed")
        ->type_name("S");
    app.add_option("--flood-limit", options.floodBytes,
                   "Bytes that the fault \"flood\" sends before it closes the connection")
        ->type_name("BYTES")
        ->check(CLI::Range(1, 268435456))
        ->capture_default_str();
    CLI::Option* const record =
        app.add_option("--record", options.recordFile,
                       "Write each exchange to this file, one JSON object a line: time, client, "
                       "request, answer, end, fault; delays are not kept")
            ->type_name("FILE");
    app.add_option("--replay", options.replayFile,
                   "Give the answers of a recorded file, in their order and whatever is asked; "
                   "then close connections")
        ->type_name("FILE")
        ->excludes(record);
    app.add_flag("--verbose", options.isVerbose, "Show each message on standard error");
    app.footer("Faults:\n" + faultTable() + "\nLines on standard input:\n" + commandTable() +
               "\nExit status: 0 after an interrupt or \"quit\", 1 if it cannot listen or use\na "
               "file, 2 for wrong usage.\n"
               "\nExamples:\n"
               "  azubsim --socket /tmp/engine\n"
               "  azubsim --socket /tmp/engine --fault 'error 1002 no such margin'\n"
               "  azubsim --socket /tmp/engine --fault cut --fault reset --every 10 --seed 1\n");
}

std::optional<int> readOptions(int argc, char** argv, Options& options) {
    CLI::App app;
    declareOptions(app, options);
    return manual::readCommandLine(app, argc, argv, [&] {
        if (options.socket.empty()) {
            throw CLI::RequiredError("--socket");
        }
        readFaults(options);
    });
}

} // namespace azubsim
