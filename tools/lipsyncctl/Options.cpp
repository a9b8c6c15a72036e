#include "tools/lipsyncctl/Options.h"

#include <CLI/CLI.hpp>
#include <map>

#include "lipsyncapi/Service.h"
#include "tools/common/Number.h"
#include "tools/common/Tool.h"

namespace lipsyncctl {

namespace {

using tools::integerFrom;
using velta::zub::lipsyncapi::Service;

constexpr unsigned long hourMs = 3600000;
constexpr unsigned long daySeconds = 86400;
constexpr unsigned long million = 1000000;

const std::map<std::string, Format> formats{
    {"text", Format::Text}, {"json", Format::Json}, {"csv", Format::Csv}};

std::string checkSocket(const std::string& path) {
    constexpr std::size_t longest = 108; // The library would cut a longer one.
    return !path.empty() && path.size() <= longest ? "" : "a socket path must have 1 to 108 bytes";
}

CLI::App* declareCommand(CLI::App& parent, Options& options, const std::string& name,
                         Command command, const std::string& description) {
    CLI::App* const app = parent.add_subcommand(name, description);
    app->set_help_flag("-h,--help",
                       "Print this help message and exit. See lipsyncctl --help\n"
                       "for the options of every command, such as --socket");
    app->callback([&options, command] { options.command = command; });
    app->fallthrough();
    return app;
}

void declareMargin(CLI::App& app, Options& options) {
    CLI::App* const margin =
        app.add_subcommand("margin", "\"margin set MS\" sets the audio delay margin");
    margin->fallthrough();
    margin->require_subcommand(1);
    declareCommand(*margin, options, "set", Command::SetMargin,
                   "Ask the engine to delay the audio by MS milliseconds")
        ->add_option("MS", options.marginMs, "Audio delay margin in ms: a multiple of 20 up to 100")
        ->type_name("")
        ->check(integerFrom(0, Service::capabilityMaxAudioDelayMargin,
                            Service::capabilityGranularityMs))
        ->required();
}

void declareTimestamps(CLI::App& app, Options& options) {
    CLI::App* const timestamps =
        declareCommand(app, options, "timestamps", Command::Timestamps,
                       "Print when the audio was captured and received, the\n"
                       "latency from capture to rendering, and the depth of the\n"
                       "jitter buffer");
    timestamps->add_flag("--watch", options.watch,
                         "Repeat until interrupted: in a live view if text goes to\n"
                         "a terminal, otherwise one line per reading. If the\n"
                         "engine goes away, wait for it to come back");
    const auto addLimit = [&](const char* name, auto& value, const char* unit, unsigned long max,
                              const char* description) {
        return timestamps->add_option(name, value, description)
            ->type_name(unit)
            ->check(integerFrom(1, max))
            ->each([&options](const std::string&) { options.watch = true; });
    };
    addLimit("--interval", options.intervalMs, "MS", hourMs,
             "Watch with this time between readings in ms")
        ->capture_default_str();
    addLimit("--count", options.readings, "N", million, "Watch until there are this many readings");
    addLimit("--max-time", options.maxSeconds, "SECONDS", daySeconds,
             "Watch for at most this time. Fails if there are no\n"
             "readings then, or fewer than --count");
}

void declarePing(CLI::App& app, Options& options) {
    CLI::App* const ping =
        declareCommand(app, options, "ping", Command::Ping,
                       "Measure how long an exchange takes: minimum, median,\n"
                       "99th percentile, maximum. An error from the engine is an\n"
                       "answer too, but is counted as a refusal");
    ping->add_option("--count", options.exchanges, "Number of exchanges")
        ->type_name("N")
        ->check(integerFrom(1, million))
        ->capture_default_str();
}

void declareGeneralOptions(CLI::App& app, Options& options) {
    options.socket = Service::defaultLipsyncSocketName;
    app.add_option("-s,--socket", options.socket, "Path of the engine's socket")
        ->type_name("PATH")
        ->envname("LIPSYNCCTL_SOCKET")
        ->check(checkSocket)
        ->capture_default_str();
    app.add_option_function<std::string>(
           "--format", [&options](const std::string& name) { options.format = formats.at(name); },
           "Output format: text (default) for people, json or csv\n"
           "for programs")
        ->type_name("text|json|csv")
        ->check([](const std::string& name) {
            return formats.count(name) > 0 ? "" : "'" + name + "' is not text, json or csv";
        });
    app.add_option("--timeout", options.timeoutMs,
                   "Give up if connecting or an exchange takes longer than\n"
                   "this, in ms; a watch then reconnects (default: wait\n"
                   "without limit)")
        ->type_name("MS")
        ->check(integerFrom(1, hourMs));
    app.add_option("--wait", options.waitSeconds,
                   "Wait up to this time until the engine listens; a watch\n"
                   "always waits")
        ->type_name("SECONDS")
        ->check(integerFrom(1, daySeconds));
    app.add_flag("--log", options.showsLog, "Show the library's log lines on standard error");
}

constexpr const char* notes =
    R"(Results go to standard output, errors to standard error. With --format json, an
error is also an object on standard output, except for wrong usage:
  {"error":{"kind":"timeout","code":1005,"text":"no answer ..."}}
While a watch gets no readings, its records have an "error" and no figures.

Exit status:
  0    success
  1    any other failure, for example if the results cannot be written
  2    wrong usage
  3    cannot connect to the engine (kind "cannot-connect")
  4    the connection failed ("transport"), or a time limit passed ("timeout")
  5    the engine is not in a call ("not-in-call")
  6    the engine refused the request ("refused")
  130  interrupted by SIGINT; 143 by SIGTERM

Examples:
  lipsyncctl timestamps
  lipsyncctl margin set 40 --socket /tmp/engine --timeout 500
  lipsyncctl timestamps --watch
  lipsyncctl timestamps --interval 100 --max-time 60 --format csv > run.csv
  lipsyncctl ping --count 1000 --format json
)";

} // namespace

bool readOptions(int argc, char** argv, Options& options) {
    CLI::App app("Talks to the audio engine's lip-sync socket from the command line.",
                 "lipsyncctl");
    app.require_subcommand(1);
    app.footer(notes);
    declareGeneralOptions(app, options);
    declareCommand(app, options, "capabilities", Command::Capabilities,
                   "Print the largest margin and the step between margins");
    declareMargin(app, options);
    declareTimestamps(app, options);
    declarePing(app, options);
    return tools::parseCommandLine(app, argc, argv);
}

} // namespace lipsyncctl
