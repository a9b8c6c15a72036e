#include "tools/lipsyncctl/Options.h"

#include <CLI/CLI.hpp>
#include <limits>
#include <map>
#include <memory>

#include "lipsyncapi/Service.h"
#include "tools/common/CommandLine.h"
#include "tools/common/HelpFormatter.h"
#include "tools/lipsyncctl/Decimal.h"

namespace lipsyncctl {

namespace {

using velta::zub::lipsyncapi::Service;

constexpr unsigned long hourMs = 3600000;

std::string checkSocket(const std::string& path) {
    constexpr std::size_t longest = 108; // The library would cut a longer one.
    return !path.empty() && path.size() <= longest ? "" : "a socket path must have 1 to 108 bytes";
}

CLI::App* declareCommand(CLI::App& parent, Options& options, const std::string& name,
                         Command command, const std::string& description) {
    CLI::App* const app = parent.add_subcommand(name, description);
    app->footer(
        "Every command also accepts --socket, --format, --timeout and --log: see\n"
        "lipsyncctl --help.\n");
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
        ->check(
            decimal(0, Service::capabilityMaxAudioDelayMargin, Service::capabilityGranularityMs))
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
        ->check(decimal(1, hourMs))
        ->capture_default_str()
        ->needs(watch);
    timestamps->add_option("--count", options.readings, "Stop after this many readings")
        ->type_name("N")
        ->check(decimal(1, 1000000))
        ->needs(watch);
}

void declarePing(CLI::App& app, Options& options) {
    CLI::App* const ping = declareCommand(
        app, options, "ping", Command::Ping,
        "Measure how long an exchange takes: minimum, median, 99th percentile, maximum. An error "
        "from the engine is an answer too, but is counted as a refusal");
    ping->add_option("--count", options.exchanges, "Number of exchanges")
        ->type_name("N")
        ->check(decimal(1, 1000000))
        ->capture_default_str();
}

void declareSendVideo(CLI::App& app, Options& options) {
    CLI::App* const sendVideo = declareCommand(
        app, options, "send-video", Command::SendVideo,
        "Pass the timestamps of a picture to the library, which only checks that it is connected");
    const auto anyNumber = decimal(0, std::numeric_limits<unsigned long>::max());
    sendVideo
        ->add_option("--capture", options.capture, "When the picture was captured, as NTP 32.32")
        ->type_name("NTP")
        ->check(anyNumber);
    sendVideo
        ->add_option("--rendering", options.rendering, "When the picture was shown, as NTP 32.32")
        ->type_name("NTP")
        ->check(anyNumber);
}

void declareGeneralOptions(CLI::App& app, Options& options) {
    options.socket = Service::defaultLipsyncSocketName;
    app.add_option("-s,--socket", options.socket, "Path of the engine's socket")
        ->type_name("PATH")
        ->envname("LIPSYNCCTL_SOCKET")
        ->check(checkSocket)
        ->capture_default_str();
    static const std::map<std::string, Format> formats{
        {"text", Format::Text}, {"json", Format::Json}, {"csv", Format::Csv}};
    app.add_option_function<std::string>(
           "--format", [&options](const std::string& name) { options.format = formats.at(name); },
           "Output format: text (default) for people, json or csv for programs")
        ->type_name("text|json|csv")
        ->check(CLI::IsMember(&formats));
    app.add_option("--timeout", options.timeoutMs,
                   "Give up if connecting or an exchange takes longer than this, in ms; a watch "
                   "then reconnects (default: wait without limit)")
        ->type_name("MS")
        ->check(decimal(1, hourMs));
    app.add_flag("--log", options.showsLog, "Show the library's log lines on standard error");
}

constexpr const char* notes =
    "Results go to standard output, errors to standard error. With --format json, an\n"
    "error is also an object on standard output, except for wrong usage:\n"
    "  {\"error\":{\"code\":1004,\"text\":\"Cannot connect ...\"}}\n"
    "While a watch gets no readings, its records have an \"error\" and no figures.\n"
    "\nExit status:\n"
    "  0  success\n"
    "  1  any other failure, for example if the results cannot be written\n"
    "  2  wrong usage\n"
    "  3  cannot connect to the engine\n"
    "  4  the connection failed, or the engine did not answer in time\n"
    "  5  the engine is not in a call\n"
    "  6  the engine refused the request\n"
    "\nExamples:\n"
    "  lipsyncctl timestamps\n"
    "  lipsyncctl margin set 40 --socket /tmp/engine --timeout 500\n"
    "  lipsyncctl timestamps --watch\n"
    "  lipsyncctl timestamps --watch --interval 100 --format csv > run.csv\n"
    "  lipsyncctl ping --count 1000 --format json\n";

void requireCommand(const CLI::App& app, const Options& options) {
    if (!options.command) {
        throw CLI::RequiredError(app.got_subcommand("margin")
                                     ? "\"margin get\" or \"margin set\""
                                     : "A command (capabilities, margin, timestamps, ping, "
                                       "send-video)");
    }
}

void declareOptions(CLI::App& app, Options& options) {
    app.name("lipsyncctl");
    app.formatter(std::make_shared<tools::HelpFormatter>());
    app.description("Talks to the audio engine's lip-sync socket from the command line.");
    declareGeneralOptions(app, options);
    declareCommand(app, options, "capabilities", Command::Capabilities,
                   "Print the largest margin and the step between margins");
    declareMargin(app, options);
    declareTimestamps(app, options);
    declarePing(app, options);
    declareSendVideo(app, options);
    app.footer(notes);
}

} // namespace

std::optional<int> readOptions(int argc, char** argv, Options& options) {
    CLI::App app;
    declareOptions(app, options);
    return tools::readCommandLine(app, argc, argv, [&] { requireCommand(app, options); });
}

} // namespace lipsyncctl
