#include "tools/azubsim/Options.h"

#include <CLI/CLI.hpp>

#include "tools/azubsim/Program.h"
#include "tools/azubsim/engine/FaultPlan.h"
#include "tools/azubsim/protocol/Names.h"
#include "tools/common/CommandLine.h"
#include "tools/common/Error.h"
#include "tools/common/Number.h"

namespace azubsim {

namespace {

using Mode = Options::Mode;

constexpr const char* exitStatus =
    "Exit status:\n"
    "  0  success, also after a termination signal or \"quit\"\n"
    "  1  a socket or a file cannot be used, the recording is not complete,\n"
    "     standard output cannot be written, or \"tell\" was refused\n"
    "  2  wrong usage\n";

constexpr const char* examples =
    "\nExamples:\n"
    "  azubsim engine --socket /tmp/engine\n"
    "  azubsim engine --socket /tmp/engine --fault 'error 1002 no such margin'\n"
    "  azubsim tap /dev/socket/azub_lipsync --socket /tmp/tap --record call.jsonl\n"
    "  azubsim tell /tmp/tap fault cut\n"
    "  azubsim show call.jsonl\n"
    "  azubsim trace call.jsonl > call.json\n"
    "  azubsim replay call.jsonl --socket /tmp/engine --timed\n";

// What a constructor or a function accepts; the text of its error is what is wrong.
template <typename Parse>
auto accepts(const Parse& parse) {
    return [parse](const std::string& text) -> std::string {
        try {
            parse(text);
            return "";
        } catch (const tools::Error& e) {
            return e.what();
        }
    };
}

// An empty path usually comes from a shell variable that is not set.
std::string checkPath(const std::string& path) {
    return path.empty() ? "the path is empty" : "";
}

CLI::Option* addPath(CLI::App& app, const std::string& name, std::string& path,
                     const std::string& placeholder, const std::string& description) {
    return app.add_option(name, path, description)->option_text(placeholder)->check(checkPath);
}

CLI::App* addMode(CLI::App& app, Options& options, Mode mode, const std::string& name,
                  const std::string& description) {
    CLI::App* const sub = app.add_subcommand(name, description);
    sub->callback([&options, mode] { options.mode = mode; });
    return sub;
}

void addFaults(CLI::App& app, Options& options) {
    CLI::Option* const fault =
        app.add_option("--fault", options.faults,
                       "Apply this fault to answers. If the option is repeated, the faults take "
                       "turns")
            ->option_text("FAULT")
            ->expected(1)
            ->take_all()
            ->check(accepts([](const std::string& text) { Fault{text}; }));
    app.add_option("--every", options.every,
                   "Apply a fault to one answer in N instead of every answer")
        ->option_text("N")
        ->check(tools::integerFrom(1, 1000000000))
        ->needs(fault);
    app.add_option("--seed", options.seed,
                   "Choose at random which answers get which fault; the same seed repeats the "
                   "choices")
        ->option_text("S")
        ->check(tools::integerFrom(0, UINT32_MAX))
        ->needs(fault);
    app.add_option("--only", options.targets,
                   "Spoil only the answers to this command, " +
                       names::joined(names::commands, " or ") +
                       ", or to this client, for example 'client 3'")
        ->option_text("TARGET")
        ->expected(1)
        ->take_all()
        ->check(accepts(FaultPlan::checkTarget))
        ->needs(fault);
}

void addSocket(CLI::App& app, Options& options) {
    addPath(app, "--socket", options.socket, "PATH",
            "Socket path to listen on (required). A stale socket is replaced; anything else there "
            "is an error")
        ->required();
}

// What every mode has that serves clients.
void addServing(CLI::App& app, Options& options, Mode mode) {
    addPath(app, "--scenario", options.scenarioFile, "FILE",
            "Carry out the commands of this file: lines of SECONDS COMMAND, with the time since "
            "the start. Lines that start with # are comments");
    app.add_flag("--quiet", options.isQuiet, "Print no line per exchange");
    const std::string faults = "Faults:\n" + Fault::table() +
                               "By default a flood has 16 MiB, which the library takes about 3 s "
                               "to read.\n\n";
    app.footer((mode == Mode::Replay ? "" : faults) + "Commands of " + app.get_name() +
               ", on standard input or with azubsim tell:\n" + commandTable(mode));
}

void addRecording(CLI::App& app, Options& options) {
    CLI::Option* const record =
        addPath(app, "--record", options.recordFile, "FILE",
                "Write each exchange to this file, to show, trace or replay it");
    app.add_flag("--force", options.overwrites, "Let --record overwrite a file")
        ->option_text(" ")
        ->needs(record);
}

void addServers(CLI::App& app, Options& options) {
    CLI::App* const engine = addMode(app, options, Mode::Engine, "engine",
                                     "Simulate the audio engine, with plausible timestamps or with "
                                     "faults");
    addSocket(*engine, options);
    addFaults(*engine, options);
    engine->add_flag("--no-call", options.noCall,
                     "Start outside a call: every request gets error code 1003");
    addPath(*engine, "--network", options.networkFile, "FILE",
            "Follow a recorded network: the latency and the jitter buffer's depth of this CSV "
            "file, by the time since the first client connected, again and again");
    addRecording(*engine, options);
    addServing(*engine, options, Mode::Engine);

    CLI::App* const tap = addMode(app, options, Mode::Tap, "tap",
                                  "Stand between clients and a real engine: pass everything on, "
                                  "and print, record or spoil it");
    addPath(*tap, "ENGINE", options.engine, " ", "The engine's socket path")->required();
    addSocket(*tap, options);
    addFaults(*tap, options);
    addRecording(*tap, options);
    addServing(*tap, options, Mode::Tap);

    CLI::App* const replay = addMode(app, options, Mode::Replay, "replay",
                                     "Give each request the next recorded answer to the same "
                                     "command; after the last one, close the connection");
    addPath(*replay, "RECORDING", options.recording, " ", "The file")->required();
    addSocket(*replay, options);
    replay->add_flag("--timed", options.rules.isTimed, "Answer after the recorded times");
    replay->add_flag("--in-order", options.rules.isInOrder,
                     "Give the answers in their order, whatever is asked");
    replay->add_flag("--repeat", options.rules.repeats, "Start again after the last answer");
    addServing(*replay, options, Mode::Replay);
}

void addTools(CLI::App& app, Options& options) {
    CLI::App* const show =
        addMode(app, options, Mode::Show, "show", "Print a recording: a line per exchange");
    addPath(*show, "RECORDING", options.recording, " ", "The file; - is standard input")
        ->required();
    show->add_flag("-f,--follow", options.follows, "Go on while the file grows");

    CLI::App* const trace = addMode(app, options, Mode::Trace, "trace",
                                    "Print a recording as Trace Event JSON, for ui.perfetto.dev "
                                    "or chrome://tracing");
    addPath(*trace, "RECORDING", options.recording, " ", "The file; - is standard input")
        ->required();

    CLI::App* const tell = addMode(app, options, Mode::Tell, "tell",
                                   "Give a command to the azubsim that listens at a socket, and "
                                   "print its answer. \"help\" lists the commands");
    addPath(*tell, "SOCKET", options.socket, " ", "The path after --socket")->required();
    tell->add_option("COMMAND", options.command, "The command")->option_text(" ")->required();
    // The words of a command may begin with a minus sign.
    tell->positionals_at_end();
}

} // namespace

std::optional<Options> readOptions(int argc, char** argv) {
    Options options;
    CLI::App app(
        "Simulates the audio engine for programs that use its lip-sync socket, or stands "
        "between them and a real engine.",
        "azubsim");
    app.require_subcommand(1);
    addServers(app, options);
    addTools(app, options);
    app.footer(std::string(exitStatus) + examples);
    if (!tools::parseCommandLine(app, argc, argv)) {
        return std::nullopt;
    }
    return options;
}

} // namespace azubsim
