#include "tools/azubsim/Options.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "tools/azubsim/Commands.h"
#include "tools/azubsim/Help.h"
#include "tools/common/CommandLine.h"
#include "tools/common/HelpFormatter.h"

namespace azubsim {

namespace {

void declareFaults(CLI::App& app, Options& options) {
    CLI::Option* const fault =
        app.add_option(
               "--fault", options.faultTexts,
               "Apply this fault to answers. If the option is repeated, the faults take turns")
            ->type_name("FAULT")
            ->expected(1)
            ->take_all();
    app.add_option("--every", options.every,
                   "Apply a fault to one answer in N instead of every answer")
        ->type_name("N")
        ->check(CLI::Range(1, 1000000000))
        ->needs(fault);
    app.add_option(
           "--seed", options.seed,
           "Choose at random which answers get which fault; the same seed repeats the choices")
        ->type_name("S")
        ->needs(fault);
}

void declareFiles(CLI::App& app, Options& options) {
    app.add_option(
           "--scenario", options.scenarioFile,
           "Carry out the commands of this file: lines of SECONDS COMMAND, with the time since the "
           "start. Lines that start with # are comments")
        ->type_name("FILE");
    app.add_option(
           "--record", options.recordFile,
           "Write each exchange to this file, with the time between request and answer: one "
           "JSON object per line")
        ->type_name("FILE");
    app.add_option("--trace", options.traceFile,
                   "Write each exchange to this file as Trace Event JSON, for ui.perfetto.dev or "
                   "chrome://tracing")
        ->type_name("FILE");
    app.add_flag("--force", options.overwrites, "Let --record and --trace overwrite a file");
}

// An empty path usually comes from a shell variable that is not set. It must not turn a tap into a
// simulation.
void refuseEmptyPaths(CLI::App& app) {
    for (const char* const name :
         {"--network", "--scenario", "--record", "--trace", "--forward", "--replay"}) {
        app.get_option(name)->check([](const std::string& path) {
            return std::string(path.empty() ? "the path is empty" : "");
        });
    }
}

// Options that would be ignored are refused.
void declareSources(CLI::App& app, Options& options) {
    CLI::Option* const noCall = app.add_flag(
        "--no-call", options.noCall, "Start outside a call: every request gets error code 1003");
    CLI::Option* const network =
        app.add_option(
               "--network", options.networkFile,
               "Follow a recorded network: the latency and the jitter buffer's depth of this "
               "CSV file, by the time since the first client connected, again and again")
            ->type_name("FILE");
    CLI::Option* const forward =
        app.add_option("--forward", options.engine,
                       "Be a tap: pass everything to the engine at this path and back, and print a "
                       "line per exchange")
            ->type_name("ENGINE")
            ->excludes(noCall)
            ->excludes(network);
    CLI::Option* const replay =
        app.add_option("--replay", options.replayFile,
                       "Send the answers of a recording in order and ignore the requests. After "
                       "the last one, close the connection on each request")
            ->type_name("FILE")
            ->excludes(noCall)
            ->excludes(network)
            ->excludes(forward);
    for (const char* const name : {"--fault", "--every", "--seed", "--record"}) {
        replay->excludes(app.get_option(name));
    }
    app.add_flag("--timed", options.isTimed, "Replay the answers with the recorded times")
        ->needs(replay);
}

void declareOptions(CLI::App& app, Options& options) {
    app.name("azubsim");
    app.formatter(std::make_shared<tools::HelpFormatter>());
    app.description(
        "Simulates the audio engine: answers lip-sync requests on a Unix-domain socket, with "
        "plausible timestamps or with faults, until it is interrupted. As a tap (--forward) it "
        "stands between clients and a real engine, to watch, record or spoil what passes. Commands "
        "on standard input change its settings while it runs.");
    app.add_option("--socket", options.socket,
                   "Socket path to listen on (required). A stale socket is replaced; anything "
                   "else there is an error")
        ->type_name("PATH");
    declareFaults(app, options);
    declareFiles(app, options);
    declareSources(app, options);
    refuseEmptyPaths(app);
    app.add_flag("--verbose", options.isVerbose, "Print each message to standard error");
    app.footer("Faults:\n" + faultTable() +
               "\nBy default a flood has 16 MiB, which the library takes about 3 s to read.\n"
               "\nCommands on standard input:\n" +
               Commands::table() +
               "\nExit status:\n"
               "  0  after a termination signal or \"quit\"\n"
               "  1  the socket or a file cannot be used\n"
               "  2  wrong usage\n"
               "\nExamples:\n"
               "  azubsim --socket /tmp/engine\n"
               "  azubsim --socket /tmp/engine --fault 'error 1002 no such margin'\n"
               "  azubsim --socket /tmp/engine --fault cut --fault reset --every 10\n"
               "  azubsim --socket /tmp/tap --forward /dev/socket/azub_lipsync\n");
}

void check(Options& options) {
    if (options.socket.empty()) {
        throw CLI::RequiredError("--socket");
    }
    if (options.socket == options.engine) {
        throw CLI::ValidationError("--forward", "the engine's path must differ from --socket");
    }
    if (options.overwrites && options.recordFile.empty() && options.traceFile.empty()) {
        throw CLI::RequiresError("--force", "--record or --trace");
    }
    if (!options.recordFile.empty() && options.recordFile == options.traceFile) {
        throw CLI::ValidationError("--trace", "the file must differ from that of --record");
    }
    for (const std::string& text : options.faultTexts) {
        std::string error;
        if (!Fault::parse(text, options.faults.emplace_back(), error)) {
            throw CLI::ValidationError("--fault", error);
        }
    }
}

} // namespace

std::optional<int> readOptions(int argc, char** argv, Options& options) {
    CLI::App app;
    declareOptions(app, options);
    return tools::readCommandLine(app, argc, argv, [&] { check(options); });
}

} // namespace azubsim
