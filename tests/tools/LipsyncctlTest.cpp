#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <nlohmann/json.hpp>
#include <regex>
#include <thread>

#include "tests/tools/Engine.h"

using tests::Engine;
using tests::Process;

using testing::IsSubstring;

using Lipsyncctl = tests::EngineTest;

namespace {

// Seconds since 1970.
double parseTime(const std::string& utc) {
    std::tm time{};
    const char* const fraction = strptime(utc.c_str(), "%Y-%m-%dT%H:%M:%S", &time);
    return fraction == nullptr ? 0 : static_cast<double>(timegm(&time)) + std::atof(fraction);
}

// The next record; error messages are between them.
nlohmann::json readRecord(const Process& watch) {
    const std::string start = "{\"time\"";
    watch.readUntil(start);
    return nlohmann::json::parse(start + watch.readUntil("\n"));
}

// The view begins with a title; without ncurses there is a message with a colon instead.
bool hasLiveView(const Process& view) {
    view.readUntil("lipsyncctl");
    return view.readUntil(" ") == " ";
}

} // namespace

TEST_F(Lipsyncctl, AnswersPeopleAndPrograms) {
    const Engine engine(socket);
    const std::pair<std::string, const char*> cases[] = {
        {"capabilities", "margins of 0 to 100 ms in steps of 20 ms\n"},
        {"capabilities --format csv", "granularity_ms,max_margin_ms\n20,100\n"},
        {"margin set 60", "the engine delays the audio by 60 ms\n"},
        {"margin get", "0 ms, .*\n"},
        {"send-video --format json", "\\{\"accepted\":true\\}\n"},
        {"timestamps", "captured [0-9:.]{12}  received .*  latency .* ms  jitter buffer .* ms\n"},
        {"timestamps --watch --count 3 --interval 20 --format csv",
         "time,capture_ntp,rendering_ntp,receiving_ntp,latency_ms,jitter_depth_ms,time_utc,"
         "capture_utc,rendering_utc,receiving_utc,error\n"
         "([0-9.]+,[0-9]+,[0-9]+,[0-9]+,[0-9.]+,[0-9]+,([-0-9]{10}T[0-9:]{8}[.][0-9]{3}Z,){4}\n)"
         "{3}"},
        {"ping --count 3",
         "3 exchanges, 0 refused: min .* ms, median .*, 99th percentile .*, max .* ms\n"},
        {"--version", "lipsyncctl [0-9]+[.][0-9]+[.][0-9]+\n"},
    };
    for (const auto& [arguments, expected] : cases) {
        const std::string output = run(LIPSYNCCTL, arguments + at);
        EXPECT_TRUE(std::regex_match(output, std::regex(expected))) << arguments << ": " << output;
    }
    const auto ping = nlohmann::json::parse(run(LIPSYNCCTL, "ping --count 50 --format json" + at));
    EXPECT_EQ(ping["exchanges"], 50);
    EXPECT_LE(ping["min_ms"], ping["median_ms"]);
    EXPECT_LE(ping["p99_ms"], ping["max_ms"]);
}

TEST_F(Lipsyncctl, ReadsTimestampsWithTheMarginThatAnotherClientSet) {
    const Engine engine(socket);
    for (const int margin : {0, 60}) {
        run(LIPSYNCCTL, "margin set " + std::to_string(margin) + at);
        const auto reading =
            nlohmann::json::parse(run(LIPSYNCCTL, "timestamps --format json" + at));
        const double received = reading["receiving_ntp"];
        const double depth = reading["jitter_depth_ms"];
        const double seconds = received / 4294967296 - 2208988800;
        EXPECT_NEAR(reading["time"], seconds, 2);
        EXPECT_NEAR(parseTime(reading["receiving_utc"]), seconds, 0.001);
        EXPECT_LT(reading["capture_ntp"], received);
        EXPECT_GT(reading["rendering_ntp"], received);
        EXPECT_NEAR(depth, 70, 50);
        EXPECT_NEAR(reading["latency_ms"], 70 + depth + margin, 0.001);
    }
}

TEST_F(Lipsyncctl, FailsWithAStatusAndTheReason) {
    const auto fails = [&](const std::string& arguments, int status, const std::string& error) {
        expectFailure(LIPSYNCCTL, arguments + at, status, error);
    };
    fails("ping", 3,
          "lipsyncctl: Cannot connect to Audio ZUB (Code 1004): {Connection has failed (Code "
          "20002): Unable to connect to " +
              socket + " {No such file or directory (Code 2)}}\n");
    for (const char* const margin : {"30", "120", "-20", "020", "20ms", "99999999999999999999"}) {
        // There is no engine: it fails before it connects.
        fails(std::string("margin set ") + margin, 2,
              "lipsyncctl: MS: '" + std::string(margin) +
                  "' is not a decimal number from 0 to 100 in steps of 20 (see lipsyncctl "
                  "--help)\n");
    }
    const Engine idle(socket, {"--no-call"});
    fails("timestamps", 5,
          "lipsyncctl: The AZUB is not performing a call (Code 1007): {Bad state (Code 1003): no "
          "call}\n");
    fails("margin set 40", 5, "lipsyncctl: The AZUB is not performing a call (Code 1007): {Bad");
    fails("capabilities", 1, "lipsyncctl: cannot write to standard output\n");
    fails("", 2, "lipsyncctl: A command (capabilities, ");
    fails("margin", 2, "lipsyncctl: \"margin get\" or ");
    fails("margin set", 2, "lipsyncctl: MS is required");
    fails("margin get margin set 40", 2, "lipsyncctl: The following argument");
    fails("ping timestamps", 2, "lipsyncctl: The following argument");
    fails("ping --count 4000000000", 2, "lipsyncctl: --count");
    fails("ping --timeout 0", 2, "lipsyncctl: --timeout");
    fails("send-video --capture -1", 2, "lipsyncctl: --capture");
    fails("send-video --rendering 18446744073709551616", 2, "lipsyncctl: --rendering");
    fails("timestamps --count 3", 2, "lipsyncctl: --count requires --watch");
    fails("timestamps --watch --interval 0", 2, "lipsyncctl: --interval");
    fails("--format xml ping", 2, "lipsyncctl: --format: xml");
}

TEST_F(Lipsyncctl, ShowsLogLinesOnlyOnRequestAndTakesTheSocketFromTheEnvironment) {
    const Engine engine(socket);
    setenv("LIPSYNCCTL_SOCKET", socket.c_str(), 1);
    Process quiet({LIPSYNCCTL, "margin", "set", "20"});
    Process talkative({LIPSYNCCTL, "margin", "set", "20", "--log"});
    Process elsewhere({LIPSYNCCTL, "margin", "set", "20", "-s", socket + "x"});
    unsetenv("LIPSYNCCTL_SOCKET");
    EXPECT_EQ(quiet.readAll(), "the engine delays the audio by 20 ms\n");
    EXPECT_PRED_FORMAT2(IsSubstring, "I/AZUBLIPSYNCAPI Client is conn", talkative.readAll());
    EXPECT_PRED_FORMAT2(IsSubstring, socket + "x {No such file", elsewhere.readAll());
}

TEST_F(Lipsyncctl, EndsQuietlyWhenItsReaderHasGone) {
    const Engine engine(socket);
    Process watch({LIPSYNCCTL, "timestamps", "--watch", "--interval", "1", "--socket", socket});
    watch.readUntil("captured ");
    watch.stopReading();
    EXPECT_EQ(watch.wait(), -SIGPIPE);
}

TEST_F(Lipsyncctl, MakesTheEnginesMessagePrintable) {
    const Engine engine(socket, {"--fault", "error 1001 \x1b[31m\"red\", \xc2\x9b \x7f"});
    const std::string before = "The lipsync server returned an error (Code 1006): {Unknown error ";
    EXPECT_EQ(run(LIPSYNCCTL, "timestamps" + at, 6),
              "lipsyncctl: " + before + "(Code 1001): \\x1b[31m\"red\", \\xc2\\x9b \\x7f}\n");
    const std::string json = run(LIPSYNCCTL, "timestamps --format json" + at, 6);
    EXPECT_PRED_FORMAT2(IsSubstring, "\\u001b[31m\\\"red\\\", \\u009b \\u007f}\"}}\n", json);
    EXPECT_EQ(nlohmann::json::parse(json.substr(json.find("{\"")))["error"]["code"], 1006);
    Process watch({LIPSYNCCTL, "timestamps", "--watch", "--format", "csv", "-s", socket});
    watch.readUntil("error\n");
    EXPECT_TRUE(std::regex_match(
        watch.readUntil("\n"),
        std::regex("[0-9.]+,,,,,,[^,]+Z,,,,\"The .*\"\"red\"\", .*x9b .x7f[}]\"\n")));
}

TEST_F(Lipsyncctl, GivesUpAfterTheTimeout) {
    const Engine engine(socket, {"--fault", "silence", "--every", "3"});
    run(LIPSYNCCTL, "margin set 20 --timeout 30000" + at);
    const std::string output = run(LIPSYNCCTL, "ping --timeout 400 --format json" + at, 4);
    EXPECT_PRED_FORMAT2(IsSubstring, "{\"exchanges\":1,", output);
    EXPECT_PRED_FORMAT2(IsSubstring, "lipsyncctl: no answer within 400 ms\n", output);
    EXPECT_PRED_FORMAT2(IsSubstring, "{\"error\":{\"code\":1005,\"text\":\"no ans", output);
    // A watch gets its second reading on a new connection.
    EXPECT_PRED_FORMAT2(
        IsSubstring, "Waiting for the engine: no answer within 400 ms\n",
        run(LIPSYNCCTL, "timestamps --watch --count 4 --interval 1 --timeout 400" + at));
}

TEST_F(Lipsyncctl, GivesUpIfTheEngineDoesNotAcceptConnections) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socket.copy(address.sun_path, sizeof(address.sun_path) - 1);
    const auto* const name = reinterpret_cast<const sockaddr*>(&address);
    const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    const int waiting = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(listener, name, sizeof(address)), 0);
    ASSERT_EQ(listen(listener, 0), 0);
    ASSERT_EQ(connect(waiting, name, sizeof(address)), 0);
    expectFailure(LIPSYNCCTL, "capabilities --timeout 100" + at, 4,
                  "lipsyncctl: no connection within 100 ms\n");
    // A watch that waits for the connection can be ended.
    Process watch({LIPSYNCCTL, "timestamps", "--watch", "--timeout", "100", "-s", socket});
    watch.readUntil("no connection within");
    watch.signal(SIGINT);
    EXPECT_EQ(watch.wait(), 0);
    close(waiting);
    close(listener);
}

TEST_F(Lipsyncctl, PingCountsRefusalsAndPrintsItsFiguresWhenInterrupted) {
    const Engine engine(
        socket, {"--verbose", "--fault", "error 1002", "--fault", "error 7", "--fault", "silence"});
    Process ping({LIPSYNCCTL, "ping", "--socket", socket});
    for (int request = 0; request < 3; ++request) {
        engine.readUntil("GetAudioTs_Request");
    }
    // Now it waits for an answer.
    ping.signal(SIGINT);
    EXPECT_PRED_FORMAT2(IsSubstring, "2 exchanges, 2 refused: min ", ping.readAll());
    EXPECT_EQ(ping.wait(), 0);
}

TEST_F(Lipsyncctl, ReadsAtOnceAfterAnOutageAndThenAtTheInterval) {
    const auto watch = [&](const std::string& intervalMs) {
        return Process({LIPSYNCCTL, "timestamps", "--watch", "--interval", intervalMs, "--format",
                        "json", "--socket", socket});
    };
    const Process rare = watch("3600000");
    const Process frequent = watch("1000");
    for (const Process* const process : {&rare, &frequent}) {
        const nlohmann::json outage = readRecord(*process);
        EXPECT_EQ(outage["error"]["code"], 1004);
        EXPECT_TRUE(outage["latency_ms"].is_null());
    }
    // Long enough for several attempts to connect.
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    const Engine engine(socket);
    EXPECT_TRUE(readRecord(rare)["error"].is_null());
    const double first = readRecord(frequent)["time"];
    EXPECT_NEAR(readRecord(frequent)["time"].get<double>() - first, 1, 0.9);
}

TEST_F(Lipsyncctl, WatchesAnEngineThatGoesAwayComesBackAndFallsSilent) {
    auto engine = std::make_unique<Engine>(socket);
    Process watch({LIPSYNCCTL, "timestamps", "--watch", "--interval", "20", "--socket", socket});
    watch.readUntil("  latency ");
    engine.reset();
    watch.readUntil("lipsyncctl: Waiting for the engine: Cannot connect to Audio ZUB");
    engine = std::make_unique<Engine>(socket);
    watch.readUntil("  latency ");
    engine->write("call off\n");
    watch.readUntil(
        "lipsyncctl: The engine refused the request: The AZUB is not performing a call");
    engine->write("fault silence\nverbose on\n");
    engine->readUntil("client");
    // Now it waits for an answer.
    watch.signal(SIGINT);
    EXPECT_EQ(watch.wait(), 0);
}

TEST_F(Lipsyncctl, ShowsALiveViewAndLeavesTheTerminalAsItWas) {
    const Engine engine(socket);
    Process view({LIPSYNCCTL, "timestamps", "--watch", "--interval", "50", "--socket", socket},
                 Process::ToTerminal);
    if (!view.hasStarted()) {
        GTEST_SKIP() << "no pseudo-terminal can be opened";
    }
    if (!hasLiveView(view)) {
        GTEST_SKIP() << "built without a live view";
    }
    EXPECT_PRED_FORMAT2(IsSubstring, "Captured", view.readUntil("capture to rendering"));
    engine.signal(SIGTERM);
    // Only changed characters are written; this text differs from what was on the screen.
    view.readUntil("occured in the transport layer");
    view.write("\x03");
    // The terminal's previous text is restored.
    const std::string end = view.readAll();
    EXPECT_PRED_FORMAT2(IsSubstring, "\x1b[?1049l", end);
    EXPECT_PRED_FORMAT2(IsSubstring, ", outages 1\r\nLatency: min ", end);
    EXPECT_EQ(view.wait(), 0);
}

TEST_F(Lipsyncctl, LiveViewSaysThatTheEngineIsSilentAndQuitsOnKeys) {
    const Engine engine(socket, {"--fault", "silence"});
    const std::pair<const char*, const char*> cases[] = {
        {"Connecting", "q"}, {"Connecting", "Q"}, {"No answer for", "\x1b"}};
    for (const auto& [state, key] : cases) {
        Process view({LIPSYNCCTL, "timestamps", "--watch", "--socket", socket},
                     Process::ToTerminal);
        if (!view.hasStarted()) {
            GTEST_SKIP() << "no pseudo-terminal can be opened";
        }
        if (!hasLiveView(view)) {
            GTEST_SKIP() << "built without a live view";
        }
        view.readUntil(state);
        view.write(key);
        EXPECT_PRED_FORMAT2(IsSubstring, "Readings 0, refusals 0, outages 0\r\n", view.readAll());
        EXPECT_EQ(view.wait(), 0);
    }
}

TEST_F(Lipsyncctl, PrintsLinesOnATerminalWithoutAMovableCursor) {
    const Engine engine(socket);
    Process watch({LIPSYNCCTL, "timestamps", "--watch", "--count", "1", "--socket", socket},
                  Process::ToDumbTerminal);
    if (!watch.hasStarted()) {
        GTEST_SKIP() << "no pseudo-terminal can be opened";
    }
    const std::string output = watch.readAll();
    EXPECT_PRED_FORMAT2(IsSubstring, "captured ", output);
    EXPECT_EQ(output.find('\x1b'), std::string::npos) << output;
}
