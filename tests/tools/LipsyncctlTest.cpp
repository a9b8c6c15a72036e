#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/tools/Engine.h"

using nlohmann::json;
using tests::Engine;
using tests::Process;

namespace {

struct Outcome {
    int status;
    std::string output; ///< Both outputs, without the library's log lines.
};

Outcome run(std::vector<std::string> arguments, const std::string& socket) {
    arguments.insert(arguments.begin(), LIPSYNCCTL);
    arguments.insert(arguments.end(), {"--socket", socket});
    Process process(arguments);
    std::istringstream lines(process.readAll());
    Outcome outcome{process.wait(), ""};
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("I/AZUBLIPSYNCAPI ", 0) != 0) {
            outcome.output += line + '\n';
        }
    }
    return outcome;
}

} // namespace

TEST(Lipsyncctl, AnswersPeopleAndPrograms) {
    Engine engine({});
    const auto text = [&](const std::vector<std::string>& arguments) {
        const Outcome outcome = run(arguments, engine.socket());
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        return outcome.output;
    };
    EXPECT_EQ(text({"capabilities"}), "margins of 0 to 100 ms in steps of 20 ms\n");
    EXPECT_EQ(text({"margin", "set", "60"}), "the engine delays the audio by 60 ms\n");
    EXPECT_EQ(text({"margin", "get"}).substr(0, 5), "0 ms,");
    EXPECT_EQ(text({"send-video"}).substr(0, 8), "accepted");
    EXPECT_EQ(text({"capabilities", "--format", "csv"}), "granularity_ms,max_margin_ms\n20,100\n");

    const json reading = json::parse(text({"timestamps", "--format", "json"}));
    EXPECT_GT(reading["rendering_ntp"].get<std::uint64_t>(), reading["capture_ntp"]);
    EXPECT_NEAR(reading["latency_ms"], 130 + reading["jitter_depth_ms"].get<double>(), 0.01);

    const json ping = json::parse(text({"ping", "--count", "50", "--format", "json"}));
    EXPECT_EQ(ping["exchanges"], 50);
    EXPECT_LE(ping["min_ms"], ping["median_ms"]);
    EXPECT_LE(ping["median_ms"], ping["p99_ms"]);
    EXPECT_LE(ping["p99_ms"], ping["max_ms"]);

    std::istringstream csv(
        text({"timestamps", "--watch", "--count", "3", "--interval", "20", "--format", "csv"}));
    std::string line;
    std::getline(csv, line);
    EXPECT_EQ(line, "time,capture_ntp,rendering_ntp,receiving_ntp,latency_ms,jitter_depth_ms");
    int rows = 0;
    for (; std::getline(csv, line); ++rows) {
        EXPECT_EQ(std::count(line.begin(), line.end(), ','), 5) << line;
    }
    EXPECT_EQ(rows, 3);
}

TEST(Lipsyncctl, FailsWithTheWholeChain) {
    const tests::TemporaryDirectory directory;
    const std::string file = directory.path() + "/file";
    std::ofstream(file) << "x";
    const std::string cannot =
        "lipsyncctl: Cannot connect to Audio ZUB (Code 1004): {Connection has failed (Code 20002): "
        "Unable to connect to ";
    const std::string longPath = directory.path() + '/' + std::string(200, 'x');
    for (const char* const command : {"capabilities", "timestamps", "ping"}) {
        const Outcome missing = run({command}, directory.path() + "/none");
        EXPECT_EQ(missing.status, 1);
        EXPECT_EQ(missing.output,
                  cannot + directory.path() + "/none {No such file or directory (Code 2)}}\n");
    }
    EXPECT_EQ(run({"ping"}, file).output, cannot + file + " {Connection refused (Code 111)}}\n");
    EXPECT_EQ(run({"ping"}, longPath).output,
              cannot + longPath + " {No such file or directory (Code 2)}}\n");
    Engine idle({"--no-call"});
    const Outcome odd = run({"margin", "set", "30"}, idle.socket());
    EXPECT_EQ(odd.status, 2);
    EXPECT_NE(odd.output.find("granularity of 20ms."), std::string::npos);
    EXPECT_EQ(run({"timestamps"}, idle.socket()).output,
              "lipsyncctl: The AZUB is not performing a call (Code 1007): {Bad state (Code 1003): "
              "no call}\n");
}

TEST(Lipsyncctl, RefusesBadUsage) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{}, "A command is required"},
        {{"margin"}, "A command is required"},
        {{"nonsense"}, "nonsense"},
        {{"margin", "set"}, "MS is required"},
        {{"margin", "set", "x"}, "x"},
        {{"margin", "set", "020"}, "020 is no decimal number"},
        {{"margin", "get", "margin", "set", "40"}, "set"},
        {{"ping", "timestamps"}, "timestamps"},
        {{"ping", "--count", "4000000000"}, "--count"},
        {{"timestamps", "--count", "3"}, "--count requires --watch"},
        {{"timestamps", "--watch", "--interval", "0"}, "--interval"},
        {{"--format", "xml", "ping"}, "xml"},
    };
    for (const auto& [arguments, error] : cases) {
        const Outcome outcome = run(arguments, "/nowhere");
        EXPECT_EQ(outcome.status, 2) << outcome.output;
        EXPECT_NE(outcome.output.find(error), std::string::npos) << outcome.output;
    }
}

TEST(Lipsyncctl, NoticesAnEngineThatDiesDuringAnExchange) {
    Engine engine({"--fault", "delay 60000"});
    Process reader({LIPSYNCCTL, "timestamps", "--socket", engine.socket()});
    reader.readUntil("Client is connecting");
    engine.process().signal(SIGKILL);
    EXPECT_NE(reader.readAll().find("lipsyncctl: An error has occured in the transport layer"),
              std::string::npos);
    EXPECT_EQ(reader.wait(), 1);
}

TEST(Lipsyncctl, WaitsForAnEngineAndGoesOnWhenItIsBack) {
    auto engine = std::make_unique<Engine>(std::vector<std::string>{});
    const std::string socket = engine->socket();
    const tests::TemporaryDirectory directory;
    const std::string link = directory.path() + "/engine";
    ASSERT_EQ(symlink(socket.c_str(), link.c_str()), 0);
    Process watch({LIPSYNCCTL, "timestamps", "--watch", "--interval", "20", "--socket", link});
    watch.readUntil("  latency ");
    engine.reset();
    watch.readUntil("lipsyncctl: Waiting for the engine: Cannot connect to Audio ZUB");
    engine = std::make_unique<Engine>(std::vector<std::string>{});
    unlink(link.c_str());
    ASSERT_EQ(symlink(engine->socket().c_str(), link.c_str()), 0);
    watch.readUntil("  latency ");
    engine->process().write("call off\n");
    watch.readUntil("lipsyncctl: The engine refuses: The AZUB is not performing a call");
    watch.signal(SIGINT);
    EXPECT_EQ(watch.wait(), 0);
}

TEST(Lipsyncctl, SaysThatItsOutputCannotBeWritten) {
    Engine engine({});
    Process shell(
        {"/bin/sh", "-c",
         std::string(LIPSYNCCTL) + " capabilities --socket " + engine.socket() + " >/dev/full"});
    EXPECT_NE(shell.readAll().find("lipsyncctl: cannot write to standard output"),
              std::string::npos);
    EXPECT_EQ(shell.wait(), 1);
}

TEST(Lipsyncctl, ShowsALiveViewAndLeavesTheTerminalAsItWas) {
    Engine engine({});
    Process view(
        {LIPSYNCCTL, "timestamps", "--watch", "--interval", "50", "--socket", engine.socket()},
        Process::OnTerminal);
    EXPECT_NE(view.readUntil("from capture to rendering").find("Captured"), std::string::npos);
    engine.process().signal(SIGTERM);
    // Only what changes on the screen is written; this is past what stood there before.
    view.readUntil("occured in the transport layer");
    view.write("\x03");
    // The terminal's own text comes back and the cursor with it.
    const std::string end = view.readAll();
    EXPECT_NE(end.find("\x1b[?1049l"), std::string::npos);
    EXPECT_EQ(end.find("I/AZUBLIPSYNCAPI"), std::string::npos);
    EXPECT_EQ(view.wait(), 0);
}

TEST(Lipsyncctl, EndsOnAnInterruptAlsoWhenTheEngineIsSilent) {
    Engine engine({"--fault", "silence"});
    Process watch({LIPSYNCCTL, "timestamps", "--watch", "--socket", engine.socket()});
    watch.readUntil("Client is connecting");
    watch.signal(SIGINT);
    EXPECT_EQ(watch.wait(), 0);
}
