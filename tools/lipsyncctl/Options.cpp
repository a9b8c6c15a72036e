#include "tools/lipsyncctl/Options.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>

#include "lipsyncapi/Service.h"
#include "tools/manual/CommandLine.h"
#include "tools/manual/HelpFormatter.h"

namespace lipsyncctl {

namespace {

// The option parser would read 020 as 16 and -20 as a very large number.
std::string isDecimal(const std::string& text) {
    const bool isNumber = text.find_first_not_of("0123456789") == std::string::npos &&
                          (text == "0" || text[0] != '0') && text.size() <= 9;
    return isNumber ? "" : text + " is no decimal number of ms";
}

CLI::App* declareCommand(CLI::App& parent, Options& options, const std::string& name,
                         Command command, const std::string& description) {
    CLI::App* const app = parent.add_subcommand(name, description);
    app->footer("--socket and --format go with every command: see lipsyncctl --help.");
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
                   "Print the last margin that the engine confirmed to the owner of this "
                   "connection, which is 0 on the new connection that this command makes: the "
                   "protocol has no way to ask the engine for its own");
    declareCommand(*margin, options, "set", Command::MarginSet,
                   "Ask the engine to delay the audio by MS milliseconds")
        ->add_option("MS", options.marginMs, "Margin in ms: a multiple of 20 up to 100")
        ->type_name("")
        ->check(isDecimal)
        ->required();
}

void declareTimestamps(CLI::App& app, Options& options) {
    CLI::App* const timestamps = declareCommand(
        app, options, "timestamps", Command::Timestamps,
        "Print when the audio was captured, received and rendered, its latency from capture to "
        "rendering, and the depth of the jitter buffer");
    CLI::Option* const watch = timestamps->add_flag(
        "--watch", options.watch,
        "Go on until an interrupt: a view that is redrawn in place on a terminal, else one line a "
        "reading; an engine that goes away is waited for");
    timestamps->add_option("--interval", options.intervalMs, "Time between readings in ms")
        ->type_name("MS")
        ->check(CLI::Range(1, 3600000))
        ->capture_default_str()
        ->needs(watch);
    timestamps->add_option("--count", options.count, "End after this many readings")
        ->type_name("N")
        ->check(CLI::Range(1, 1000000))
        ->needs(watch);
}

void declarePing(CLI::App& app, Options& options) {
    CLI::App* const ping =
        declareCommand(app, options, "ping", Command::Ping,
                       "Measure how long an exchange takes: least, median, 99th percentile, most");
    ping->add_option("--count", options.count, "Number of exchanges; 10 if not given")
        ->type_name("N")
        ->check(CLI::Range(1, 1000000));
}

void declareSendVideo(CLI::App& app, Options& options) {
    CLI::App* const sendVideo = declareCommand(
        app, options, "send-video", Command::SendVideo,
        "Hand over timestamps of a picture; the library only checks that it is connected");
    sendVideo->add_option("--capture", options.capture, "When it was captured, NTP 32.32")
        ->type_name("NTP");
    sendVideo->add_option("--rendering", options.rendering, "When it was shown, NTP 32.32")
        ->type_name("NTP");
}

} // namespace

void declareOptions(CLI::App& app, Options& options) {
    using velta::zub::lipsyncapi::Service;
    app.name("lipsyncctl");
    app.formatter(std::make_shared<manual::HelpFormatter>());
    app.description("Talks to the audio engine's lip-sync socket from the command line.");
    options.socket = Service::defaultLipsyncSocketName;
    app.add_option("--socket", options.socket, "Path of the engine's socket")
        ->type_name("PATH")
        ->capture_default_str();
    static const std::map<std::string, Format> formats{
        {"text", Format::Text}, {"json", Format::Json}, {"csv", Format::Csv}};
    app.add_option_function<std::string>(
           "--format", [&options](const std::string& name) { options.format = formats.at(name); },
           "Output: text, which is the default, for people; json or csv for programs")
        ->type_name("text|json|csv")
        ->check(CLI::IsMember(&formats));
    declareCommand(app, options, "capabilities", Command::Capabilities,
                   "Print what margins the engine takes");
    declareMargin(app, options);
    declareTimestamps(app, options);
    declarePing(app, options);
    declareSendVideo(app, options);
    app.footer(
        "Results go to standard output, the library's log lines and failures to standard\n"
        "error.\n"
        "\nExit status: 0 for success, 1 if the engine or the connection failed, 2 for\n"
        "wrong usage.\n"
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
    return manual::readCommandLine(app, argc, argv, [&] {
        if (!options.command) {
            throw CLI::RequiredError("A command");
        }
    });
}

} // namespace lipsyncctl
