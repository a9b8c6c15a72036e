#include <array>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>
#include <regex>

#include "tests/tools/Engine.h"

using tests::Engine;
using tests::Process;

using testing::IsSubstring;

using Lipsyncctl = tests::EngineTest;

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
    fails("margin set", 2, "lipsyncctl: MS is required");
    fails("margin set 20 margin set 40", 2, "lipsyncctl: unexpected argument 'margin'");
    fails("ping --count 4000000000", 2, "lipsyncctl: --count");
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

TEST_F(Lipsyncctl, GivesUpIfTheEngineDoesNotAcceptConnections) {
    const tests::Listener listener(socket);
    // Its queue takes one more than the four that it asks for.
    std::array<std::unique_ptr<velta::zub::comms::Link>, 5> waiting;
    for (auto& client : waiting) {
        client = connectTo(socket);
    }
    expectFailure(LIPSYNCCTL, "capabilities --timeout 100" + at, 4,
                  "lipsyncctl: no connection within 100 ms\n");
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
