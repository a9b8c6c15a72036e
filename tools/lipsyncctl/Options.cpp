#include "tools/lipsyncctl/Options.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>

#include "lipsyncapi/Service.h"
#include "tools/common/CommandLine.h"
#include "tools/common/HelpFormatter.h"

namespace lipsyncctl {

namespace {

// The option parser would read 020 as 16 and -20 as a very large number.
std::string isDecimal(const std::string& text) {
    const bool isNumber = text.find_first_not_of("0123456789") == std::string::npos &&
                          (text == "0" || text[0] != '0') && text.size() <= 9;
    return isNumber ? "" : text + " is not a decimal number (at most 9 digits, no leading zero)";
}

CLI::App* declareCommand(CLI::App& parent, Options& options, const std::string& name,
                         Command command, const std::string& description) {
    CLI::App* const app = parent.add_subcommand(name, description);
    app->footer("Every command also accepts --socket and --format: see lipsyncctl --help.");
    app->callback([&options, name, command] {
        if (options.command) {
            throw CLI::ExtrasError({name});
        }
        options.command = command;
    });
    app->fallthrough();
    return app;
}

void declareMargin(CLI::App& app, Options& options) {
    CLI::App* const margin = app.add_subcommand("margin", "Read or set the audio delay margin");
    margin->fallthrough();
    margin->require_subcommand(0, 1);
    declareCommand(*margin, options, "get", Command::MarginGet,
                   "Print the last margin that the engine confirmed on this connection. This is "
                   "always 0: the command opens a new connection, and the protocol has no way to "
                   "ask the engine for its margin");
    declareCommand(*margin, options, "set", Command::MarginSet,
                   "Ask the engine to delay the audio by MS milliseconds")
        ->add_option("MS", options.marginMs, "Audio delay margin in ms: a multiple of 20 up to 100")
        ->type_name("")
        ->check(isDecimal)
        ->required();
}

void declareTimestamps(CLI::App& app, Options& options) {
    CLI::App* const timestamps = declareCommand(
        app, options, "timestamps", Command::Timestamps,
        "Print when the audio was captured, received and rendered, the latency from capture to "
        "rendering, and the depth of the jitter buffer");
    CLI::Option* const watch = timestamps->add_flag(
        "--watch", options.watch,
        "Repeat until interrupted: in a live view if text goes to a terminal, otherwise one line "
        "per reading. If the engine goes away, wait for it to come back");
    timestamps->add_option("--interval", options.intervalMs, "Time between readings in ms")
        ->type_name("MS")
        ->check(CLI::Range(1, 3600000))
        ->capture_default_str()
        ->needs(watch);
    timestamps->add_option("--count", options.count, "Stop after this many readings")
        ->type_name("N")
        ->check(CLI::Range(1, 1000000))
        ->needs(watch);
}

void declarePing(CLI::App& app, Options& options) {
    CLI::App* const ping = declareCommand(
        app, options, "ping", Command::Ping,
        "Measure how long an exchange takes: minimum, median, 99th percentile, maximum");
    ping->add_option("--count", options.count, "Number of exchanges (default 10)")
        ->type_name("N")
        ->check(CLI::Range(1, 1000000));
}

void declareSendVideo(CLI::App& app, Options& options) {
    CLI::App* const sendVideo = declareCommand(
        app, options, "send-video", Command::SendVideo,
        "Pass the timestamps of a picture to the library, which only checks that it is connected");
    sendVideo
        ->add_option("--capture", options.capture, "When the picture was captured, as NTP 32.32")
        ->type_name("NTP");
    sendVideo
        ->add_option("--rendering", options.rendering, "When the picture was shown, as NTP 32.32")
        ->type_name("NTP");
}

} // namespace

void declareOptions(CLI::App& app, Options& options) {
    using velta::zub::lipsyncapi::Service;
    app.name("lipsyncctl");
    app.formatter(std::make_shared<tools::HelpFormatter>());
    app.description("Talks to the audio engine's lip-sync socket from the command line.");
    options.socket = Service::defaultLipsyncSocketName;
    app.add_option("--socket", options.socket, "Path of the engine's socket")
        ->type_name("PATH")
        ->capture_default_str();
    static const std::map<std::string, Format> formats{
        {"text", Format::Text}, {"json", Format::Json}, {"csv", Format::Csv}};
    app.add_option_function<std::string>(
           "--format", [&options](const std::string& name) { options.format = formats.at(name); },
           "Output format: text (default) for people, json or csv for programs")
        ->type_name("text|json|csv")
        ->check(CLI::IsMember(&formats));
    declareCommand(app, options, "capabilities", Command::Capabilities,
                   "Print the largest margin and the step between margins");
    declareMargin(app, options);
    declareTimestamps(app, options);
    declarePing(app, options);
    declareSendVideo(app, options);
    app.footer(
        "Results go to standard output. Errors and the library's log lines go to standard\n"
        "error.\n"
        "\nExit status: 0 for success; 1 if the connection failed, the engine returned an\n"
        "error or the results cannot be written; 2 for wrong usage.\n"
        "\nExamples:\n"
        "  lipsyncctl timestamps\n"
        "  lipsyncctl margin set 40 --socket /tmp/engine\n"
        "  lipsyncctl timestamps --watch\n"
        "  lipsyncctl timestamps --watch --interval 100 --format csv > run.csv\n"
        "  lipsyncctl ping --count 1000 --format json 2>/dev/null\n");
}

std::optional<int> readOptions(int argc, char** argv, Options& options) {
    CLI::App app;
    declareOptions(app, options);
    return tools::readCommandLine(app, argc, argv, [&] {
        if (!options.command) {
            throw CLI::RequiredError("A command");
        }
    });
}

} // namespace lipsyncctl
