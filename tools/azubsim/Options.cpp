#include "tools/azubsim/Options.h"

#include <CLI/CLI.hpp>

#include "tools/azubsim/Program.h"
#include "tools/azubsim/protocol/Names.h"
#include "tools/common/Tool.h"

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

CLI::App& addMode(CLI::App& app, Options& options, Mode mode, const char* name,
                  const char* description) {
    CLI::App* const added = app.add_subcommand(name, description);
    added->callback([&options, mode] { options.mode = mode; });
    return *added;
}

CLI::Option* addPath(CLI::App& app, const char* name, std::string& path, const char* placeholder,
                     const char* description) {
    // An empty path usually comes from a shell variable that is not set.
    const auto check = [](const std::string& text) { return text.empty() ? "it is empty" : ""; };
    return app.add_option(name, path, description)->option_text(placeholder)->check(check);
}

// An option that is carried out as the command of the same name at the start.
void addCommand(CLI::App& app, Options& options, const std::string& name, const char* placeholder,
                const std::string& description, const std::string& whenRepeated = "") {
    const auto add = [=, &options](const std::vector<std::string>& values) {
        std::string command = name;
        for (const std::string& value : values) {
            options.commands.push_back(std::string(command).append(' ' + value));
            command = whenRepeated.empty() ? name : whenRepeated;
        }
    };
    app.add_option_function<std::vector<std::string>>("--" + name, add, description)
        ->option_text(placeholder)
        ->expected(1)
        ->take_all();
}

void addFaultsAndRecord(CLI::App& app, Options& options) {
    addCommand(app, options, "fault", "FAULT",
               "Apply this fault to answers. If the option is repeated,\n"
               "the faults take turns",
               "also");
    addCommand(app, options, "every", "N", "Apply a fault to one answer in N");
    addCommand(app, options, "seed", "S",
               "Choose at random which answers get which fault; the same\n"
               "seed repeats the choices");
    addCommand(app, options, "only", "TARGET",
               "Spoil only the answers to a command,\n" + names::joined(names::commands, " or ") +
                   ", or to a\nclient, for example 'client 3'");
    addPath(app, "--record", options.recordFile, "FILE",
            "Write each exchange to this new file, to show, trace or\n"
            "replay it");
}

// What every mode has that serves clients.
void addServing(CLI::App& app, Options& options, Mode mode) {
    addPath(app, "--socket", options.socket, "PATH",
            "Socket path to listen on (required). A stale socket is\n"
            "replaced; anything else there is an error")
        ->required();
    addPath(app, "--scenario", options.scenarioFile, "FILE",
            "Carry out the commands of this file: lines of\n"
            "SECONDS COMMAND, with the time since the start. Lines\n"
            "that start with # are comments");
    app.add_flag_callback(
        "--quiet", [&options] { options.commands.emplace_back("quiet on"); },
        "Print no line per exchange");
    app.footer([mode, name = app.get_name()] {
        Options nothing;
        nothing.mode = mode;
        return "Commands of " + name + ", on standard input or with azubsim tell:\n" +
               Program(nothing).commands().help();
    });
}

void addServers(CLI::App& app, Options& options) {
    CLI::App& engine = addMode(app, options, Mode::Engine, "engine",
                               "Simulate the audio engine, also one with faults");
    addServing(engine, options, Mode::Engine);
    addFaultsAndRecord(engine, options);
    engine.add_flag_callback(
        "--no-call", [&options] { options.commands.emplace_back("call off"); },
        "Start outside a call: every request gets error code 1003");
    addPath(engine, "--network", options.networkFile, "FILE",
            "Follow a recorded network: the latency and the jitter\n"
            "buffer's depth of this CSV file, by the time since the\n"
            "first client connected, again and again");

    CLI::App& tap = addMode(app, options, Mode::Tap, "tap",
                            "Stand between clients and a real engine: pass everything\n"
                            "on, and print, record or spoil it");
    addPath(tap, "ENGINE", options.engine, " ", "The engine's socket path")->required();
    addServing(tap, options, Mode::Tap);
    addFaultsAndRecord(tap, options);

    CLI::App& replay = addMode(app, options, Mode::Replay, "replay",
                               "Give each request the next recorded answer to the same\n"
                               "command; after the last one, close the connection");
    addPath(replay, "RECORDING", options.recording, " ", "The file")->required();
    addServing(replay, options, Mode::Replay);
    replay.add_flag("--timed", options.rules.isTimed, "Answer after the recorded times");
    replay.add_flag("--in-order", options.rules.isInOrder,
                    "Give the answers in their order, whatever is asked");
    replay.add_flag("--repeat", options.rules.repeats, "Start again after the last answer");
}

void addTools(CLI::App& app, Options& options) {
    constexpr const char* file = "The file; - is standard input";
    CLI::App& show =
        addMode(app, options, Mode::Show, "show", "Print a recording: a line per exchange");
    addPath(show, "RECORDING", options.recording, " ", file)->required();
    show.add_flag("-f,--follow", options.follows, "Go on while the file grows");

    CLI::App& trace = addMode(app, options, Mode::Trace, "trace",
                              "Print a recording as Trace Event JSON, for\n"
                              "ui.perfetto.dev or chrome://tracing");
    addPath(trace, "RECORDING", options.recording, " ", file)->required();

    CLI::App& tell = addMode(app, options, Mode::Tell, "tell",
                             "Give a command to the azubsim that listens at a socket,\n"
                             "and print its answer. \"help\" lists the commands");
    addPath(tell, "SOCKET", options.socket, " ", "The path after --socket")->required();
    const auto join = [&options](const std::vector<std::string>& words) {
        options.command = CLI::detail::join(words, " ");
    };
    tell.add_option_function<std::vector<std::string>>("COMMAND", join, "The command")
        ->option_text(" ")
        ->required();
    // The words of a command may begin with a minus sign.
    tell.positionals_at_end();
}

} // namespace

std::optional<Options> readOptions(int argc, char** argv) {
    Options options;
    CLI::App app(
        "Simulates the audio engine for programs that use its lip-sync socket, or stands\n"
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
