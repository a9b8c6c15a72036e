#include "tools/azubsim/Options.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "tools/azubsim/Help.h"
#include "tools/common/CommandLine.h"
#include "tools/common/HelpFormatter.h"

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
    app.formatter(std::make_shared<tools::HelpFormatter>());
    app.description(
        "Simulates the audio engine: answers lip-sync requests on a Unix-domain socket, with "
        "plausible timestamps or with faults, until it is interrupted. Commands on standard input "
        "change its settings while it runs; \"help\" lists them.");
    app.add_option("--socket", options.socket,
                   "Socket path to listen on (required). A stale socket is replaced; anything "
                   "else there is an error")
        ->type_name("PATH");
    app.add_flag("--no-call", options.noCall,
                 "Start outside a call: every request gets error code 1003");
    app.add_option("--fault", options.faultTexts,
                   "Apply this fault to answers. Several faults (repeat the option) take turns")
        ->type_name("FAULT")
        ->expected(1)
        ->take_all();
    app.add_option("--every", options.every,
                   "Apply a fault to one answer in N instead of every answer")
        ->type_name("N")
        ->check(CLI::Range(1, 1000000000));
    app.add_option(
           "--seed", options.seed,
           "Choose at random which answers get which fault; the same seed repeats the choices")
        ->type_name("S");
    app.add_option("--flood-limit", options.floodBytes,
                   "Bytes that the fault \"flood\" sends before it closes the connection")
        ->type_name("BYTES")
        ->check(CLI::Range(1, 268435456))
        ->capture_default_str();
    CLI::Option* const record =
        app.add_option("--record", options.recordFile,
                       "Write each exchange to this file, one JSON object per line: time, client, "
                       "request, answer, end, fault. Delays are not recorded")
            ->type_name("FILE");
    app.add_option("--replay", options.replayFile,
                   "Send the answers of a recorded file in order and ignore the requests. After "
                   "the last one, close the connection on each request")
        ->type_name("FILE")
        ->excludes(record);
    app.add_flag("--verbose", options.isVerbose, "Print each message to standard error");
    app.footer("Faults:\n" + faultTable() + "\nCommands on standard input:\n" + commandTable() +
               "\nExit status: 0 after a termination signal or \"quit\", 1 if the socket or a\n"
               "file cannot be used, 2 for wrong usage.\n"
               "\nExamples:\n"
               "  azubsim --socket /tmp/engine\n"
               "  azubsim --socket /tmp/engine --fault 'error 1002 no such margin'\n"
               "  azubsim --socket /tmp/engine --fault cut --fault reset --every 10 --seed 1\n");
}

std::optional<int> readOptions(int argc, char** argv, Options& options) {
    CLI::App app;
    declareOptions(app, options);
    return tools::readCommandLine(app, argc, argv, [&] {
        if (options.socket.empty()) {
            throw CLI::RequiredError("--socket");
        }
        readFaults(options);
    });
}

} // namespace azubsim
