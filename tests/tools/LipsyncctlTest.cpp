#include <array>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <nlohmann/json.hpp>
#include <regex>
#include <thread>
#include <tuple>

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
    if (!view.hasStarted()) {
        return false;
    }
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
        {"timestamps", "captured [0-9:.]{12}  received .60 ms  latency .* ms  jitter .* ms\n"},
        {"timestamps --count 3 --interval 20 --format csv",
         "time,capture_ntp,rendering_ntp,receiving_ntp,latency_ms,jitter_depth_ms,time_utc,"
         "capture_utc,rendering_utc,receiving_utc,error\n"
         "([0-9.]+,[0-9]+,[0-9]+,[0-9]+,[0-9.]+,[0-9]+,([-0-9]{10}T[0-9:]{8}[.][0-9]{3}Z,){4}\n)"
         "{3}"},
        {"ping --count 3",
         "3 exchanges, 0 refused: min [.0-9]+, median [.0-9]+, p99 [.0-9]+, max [.0-9]+ ms\n"},
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
                  "' is not an integer from 0 to 100 in steps of 20 (see lipsyncctl "
                  "margin set --help)\n");
    }
    const Engine idle(socket, {"--no-call"});
    fails("timestamps", 5,
          "lipsyncctl: The AZUB is not performing a call (Code 1007): {Bad state (Code 1003): no "
          "call}\n");
    fails("margin set 40", 5, "lipsyncctl: The AZUB is not performing a call (Code 1007): {Bad");
    fails("capabilities", 1, "lipsyncctl: cannot write to standard output\n");
    fails("", 2, "lipsyncctl: a command is required");
    fails("margin", 2, "lipsyncctl: a command is required");
    fails("margin set", 2, "lipsyncctl: MS is required");
    fails("margin set 20 margin set 40", 2, "lipsyncctl: unexpected argument 'margin'");
    fails("ping timestamps", 2, "lipsyncctl: unexpected argument 'timestamps'");
    fails("ping --count 4000000000", 2, "lipsyncctl: --count");
    fails("ping --timeout 0", 2, "lipsyncctl: --timeout");
    fails("timestamps --interval 0", 2, "lipsyncctl: --interval");
    fails("--format xml ping", 2, "lipsyncctl: --format: 'xml' is not text, json or csv");
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
    EXPECT_EQ(nlohmann::json::parse(json.substr(0, json.find('\n')))["error"]["kind"], "refused");
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
    EXPECT_PRED_FORMAT2(IsSubstring,
                        "{\"error\":{\"kind\":\"timeout\",\"code\":1005,\"text\":\"no a", output);
    // A watch gets its second reading on a new connection.
    EXPECT_PRED_FORMAT2(
        IsSubstring, "Waiting for the engine: no answer within 400 ms\n",
        run(LIPSYNCCTL, "timestamps --watch --count 4 --interval 1 --timeout 400" + at));
}

TEST_F(Lipsyncctl, WaitsForTheEngineAndWatchesForALimitedTime) {
    Process waiting({LIPSYNCCTL, "capabilities", "--wait", "60", "--socket", socket});
    run(LIPSYNCCTL, "timestamps --wait 1" + at, 3);
    EXPECT_PRED_FORMAT2(IsSubstring, "lipsyncctl: 0 readings within 1 s\n",
                        run(LIPSYNCCTL, "timestamps --max-time 1" + at, 4));
    const Engine engine(socket);
    EXPECT_PRED_FORMAT2(IsSubstring, "margins of 0", waiting.readAll());
    run(LIPSYNCCTL, "timestamps --interval 900 --max-time 1" + at);
    run(LIPSYNCCTL, "timestamps --interval 900 --count 3 --max-time 1" + at, 4);
}

TEST_F(Lipsyncctl, CanBeEndedWhenItsReaderDoesNotRead) {
    // Longer than a pipe takes.
    const Engine engine(socket, {"--fault", "error 1001 " + std::string(100000, 'x')});
    for (const char* const format : {"text", "json"}) {
        Process watch({LIPSYNCCTL, "timestamps", "--watch", "--format", format, "-s", socket});
        watch.readUntil("lipsyncctl: ");
        // Twice: ThreadSanitizer holds back a signal that comes just before a call blocks.
        watch.signal(SIGINT);
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        watch.signal(SIGINT);
        EXPECT_EQ(watch.wait(), 130);
    }
}

TEST_F(Lipsyncctl, GivesUpIfTheEngineDoesNotAcceptConnections) {
    const tests::Listener listener(socket);
    // Its queue takes one more than the four that it asks for.
    std::array<std::unique_ptr<velta::zub::comms::Link>, 5> waiting;
    for (auto& client : waiting) {
        client = connectTo(socket);
    }
    expectFailure(LIPSYNCCTL, "capabilities --timeout 100" + at, 4,
                  "lipsyncctl: no connection within 100 ms\n");
    // A watch that waits for the connection can be ended.
    Process watch({LIPSYNCCTL, "timestamps", "--watch", "--timeout", "100", "-s", socket});
    watch.readUntil("no connection within");
    watch.signal(SIGINT);
    EXPECT_EQ(watch.wait(), 130);
}

TEST_F(Lipsyncctl, PingCountsRefusalsAndPrintsItsFiguresWhenInterrupted) {
    const Engine engine(socket,
                        {"--fault", "error 1002", "--fault", "error 7", "--fault", "silence"});
    Process ping({LIPSYNCCTL, "ping", "--socket", socket});
    for (int request = 0; request < 3; ++request) {
        engine.readUntil("GetAudioTs");
    }
    // Now it waits for an answer.
    ping.signal(SIGINT);
    EXPECT_PRED_FORMAT2(IsSubstring, "2 exchanges, 2 refused: min ", ping.readAll());
    EXPECT_EQ(ping.wait(), 130);
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
    engine->write("fault silence\n");
    engine->readUntil("fault: silence");
    // Now it waits for an answer.
    watch.signal(SIGTERM);
    EXPECT_EQ(watch.wait(), 143);
}

TEST_F(Lipsyncctl, ShowsALiveViewAndLeavesTheTerminalAsItWas) {
    const Engine engine(socket);
    Process view({LIPSYNCCTL, "timestamps", "--watch", "--interval", "50", "--socket", socket},
                 Process::ToTerminal);
    if (!hasLiveView(view)) {
        GTEST_SKIP() << "built without a live view, or no pseudo-terminal can be opened";
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
    EXPECT_EQ(view.wait(), 130);
}

TEST_F(Lipsyncctl, LiveViewSaysThatTheEngineIsSilentAndQuitsOnKeys) {
    // The long messages come faster than they can be shown.
    const std::string other = socket + "2";
    const Engine silent(socket, {"--fault", "silence"});
    const Engine busy(other, {"--fault", "error 1001 " + std::string(100000, 'x')});
    const std::tuple<std::string, const char*, const char*> cases[] = {
        {socket, "Connecting", "q"}, {socket, "No answer for", "\x1b"}, {other, "Refused", "Q"}};
    for (const auto& [path, state, key] : cases) {
        Process view({LIPSYNCCTL, "timestamps", "--interval", "1", "--socket", path},
                     Process::ToTerminal);
        if (!hasLiveView(view)) {
            GTEST_SKIP() << "built without a live view, or no pseudo-terminal can be opened";
        }
        view.readUntil(state);
        view.write(key);
        EXPECT_PRED_FORMAT2(IsSubstring, ", outages 0\r\n", view.readAll());
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
