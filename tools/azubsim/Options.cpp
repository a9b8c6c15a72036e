#include "tools/azubsim/Options.h"

#include <CLI/CLI.hpp>

#include "tools/azubsim/Program.h"
#include "tools/common/CommandLine.h"

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

// Declares the options and arguments of one mode.
class ModeOptions {
public:
    ModeOptions(CLI::App& app, Options& options, Mode mode, const char* name,
                const char* description)
        : _mode(mode), _options(options), _app(*app.add_subcommand(name, description)) {
        _app.callback([&options, mode] { options.mode = mode; });
    }

    void addPath(const char* name, std::string& path, const char* placeholder,
                 const char* description, bool isRequired = true) {
        // An empty path usually comes from a shell variable that is not set.
        _app.add_option(name, path, description)
            ->option_text(placeholder)
            ->required(isRequired)
            ->check(
                [](const std::string& text) { return text.empty() ? "the path is empty" : ""; });
    }

    void addFlag(const char* name, bool& flag, const char* description) {
        _app.add_flag(name, flag, description);
    }

    // The option is carried out as a command at the start. If it is repeated, the others are
    // carried out as `another`.
    void addCommand(const std::string& name, const std::string& placeholder,
                    const std::string& command, const std::string& another,
                    const std::string& description) {
        const auto add = [&commands = _options.commands, command,
                          another](const std::vector<std::string>& values) {
            for (const std::string& value : values) {
                commands.push_back((&value == &values.front() ? command : another) + ' ' + value);
            }
        };
        _app.add_option_function<std::vector<std::string>>(name, add, description)
            ->option_text(placeholder)
            ->expected(1)
            ->take_all();
    }

    void addCommandFlag(const char* name, const char* command, const char* description) {
        _app.add_flag_callback(
            name, [&commands = _options.commands, command] { commands.push_back(command); },
            description);
    }

    void addSocket() {
        addPath("--socket", _options.socket, "PATH",
                "Socket path to listen on (required). A stale socket is\n"
                "replaced; anything else there is an error");
    }

    void addFaults() {
        addCommand("--fault", "FAULT", "fault", "also",
                   "Apply this fault to answers. If the option is repeated,\n"
                   "the faults take turns");
        addCommand("--every", "N", "every", "every", "Apply a fault to one answer in N");
        addCommand("--seed", "S", "seed", "seed",
                   "Choose at random which answers get which fault; the same\n"
                   "seed repeats the choices");
        addCommand("--only", "TARGET", "only", "only",
                   "Spoil only the answers to this command, GetAudioTs or\n"
                   "SetAudioDelay, or to this client, for example 'client 3'");
    }

    void addRecord() {
        addPath("--record", _options.recordFile, "FILE",
                "Write each exchange to this new file, to show, trace or\n"
                "replay it",
                false);
    }

    // What every mode has that serves clients.
    void addServing() {
        addPath("--scenario", _options.scenarioFile, "FILE",
                "Carry out the commands of this file: lines of\n"
                "SECONDS COMMAND, with the time since the start. Lines\n"
                "that start with # are comments",
                false);
        addCommandFlag("--quiet", "quiet on", "Print no line per exchange");
        _app.footer([&app = _app, mode = _mode] {
            Options options;
            options.mode = mode;
            return "Commands of " + app.get_name() + ", on standard input or with azubsim tell:\n" +
                   Program(options).commands().help();
        });
    }

    CLI::App& app() { return _app; }

private:
    const Mode _mode;
    Options& _options;
    CLI::App& _app;
};

void addServers(CLI::App& app, Options& options) {
    ModeOptions engine(app, options, Mode::Engine, "engine",
                       "Simulate the audio engine, with plausible timestamps or with faults");
    engine.addSocket();
    engine.addFaults();
    engine.addCommandFlag("--no-call", "call off",
                          "Start outside a call: every request gets error code 1003");
    engine.addPath("--network", options.networkFile, "FILE",
                   "Follow a recorded network: the latency and the jitter\n"
                   "buffer's depth of this CSV file, by the time since the\n"
                   "first client connected, again and again",
                   false);
    engine.addRecord();
    engine.addServing();

    ModeOptions tap(app, options, Mode::Tap, "tap",
                    "Stand between clients and a real engine: pass everything\n"
                    "on, and print, record or spoil it");
    tap.addPath("ENGINE", options.engine, " ", "The engine's socket path");
    tap.addSocket();
    tap.addFaults();
    tap.addRecord();
    tap.addServing();

    ModeOptions replay(app, options, Mode::Replay, "replay",
                       "Give each request the next recorded answer to the same\n"
                       "command; after the last one, close the connection");
    replay.addPath("RECORDING", options.recording, " ", "The file");
    replay.addSocket();
    replay.addFlag("--timed", options.rules.isTimed, "Answer after the recorded times");
    replay.addFlag("--in-order", options.rules.isInOrder,
                   "Give the answers in their order, whatever is asked");
    replay.addFlag("--repeat", options.rules.repeats, "Start again after the last answer");
    replay.addServing();
}

void addTools(CLI::App& app, Options& options) {
    ModeOptions show(app, options, Mode::Show, "show", "Print a recording: a line per exchange");
    show.addPath("RECORDING", options.recording, " ", "The file; - is standard input");
    show.addFlag("-f,--follow", options.follows, "Go on while the file grows");

    ModeOptions trace(app, options, Mode::Trace, "trace",
                      "Print a recording as Trace Event JSON, for\n"
                      "ui.perfetto.dev or chrome://tracing");
    trace.addPath("RECORDING", options.recording, " ", "The file; - is standard input");

    ModeOptions tell(app, options, Mode::Tell, "tell",
                     "Give a command to the azubsim that listens at a socket,\n"
                     "and print its answer. \"help\" lists the commands");
    tell.addPath("SOCKET", options.socket, " ", "The path after --socket");
    tell.app()
        .add_option_function<std::vector<std::string>>(
            "COMMAND",
            [&options](const auto& words) { options.command = CLI::detail::join(words, " "); },
            "The command")
        ->option_text(" ")
        ->required();
    // The words of a command may begin with a minus sign.
    tell.app().positionals_at_end();
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
