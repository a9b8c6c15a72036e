#include <cstdlib>
#include <nlohmann/json.hpp>

#include "tests/tools/Engine.h"

using namespace tests;
using Lipsyncctl = EngineTest;

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
        EXPECT_NEAR(reading["time"], received / 4294967296 - 2208988800, 2);
        EXPECT_LT(reading["capture_ntp"], received);
        EXPECT_GT(reading["rendering_ntp"], received);
        EXPECT_NEAR(reading["latency_ms"], 70 + depth + margin, 0.001);
    }
}

TEST_F(Lipsyncctl, FailsWithAStatusAndTheReason) {
    const auto fails = [&](const std::string& arguments, int status, const std::string& error) {
        expectFailure(LIPSYNCCTL, arguments + at, status, error);
    };
    fails("ping", 3,
          "Cannot connect to Audio ZUB (Code 1004): {Connection has failed (Code 20002)");
    for (const std::string margin : {"30", "120", "-20", "020", "20ms", "99999999999999999999"}) {
        // There is no engine: it fails before it connects.
        fails("margin set " + margin, 2,
              "MS: '" + margin + "' is not an integer from 0 to 100 in steps of 20 (see lipsync");
    }
    const Engine idle(socket, {"--no-call"});
    const std::string noCall = "The AZUB is not performing a call (Code 1007): {Bad state (Code ";
    fails("timestamps", 5, noCall + "1003): no call}\n");
    fails("margin set 40", 5, noCall);
    fails("capabilities", 1, "cannot write to standard output\n");
    fails("", 2, "a command is required");
    fails("margin set", 2, "MS is required");
    fails("margin set 20 margin set 40", 2, "unexpected argument 'margin'");
    fails("ping --count 4000000000", 2, "--count");
    fails("--format xml ping", 2, "--format: 'xml' is not text, json or csv");
}

TEST_F(Lipsyncctl, ShowsLogLinesOnlyOnRequestAndTakesTheSocketFromTheEnvironment) {
    const Engine engine(socket);
    setenv("LIPSYNCCTL_SOCKET", socket.c_str(), 1);
    EXPECT_EQ(run(LIPSYNCCTL, "margin set 20"), "the engine delays the audio by 20 ms\n");
    EXPECT_IN("I/AZUBLIPSYNCAPI Client is conn", run(LIPSYNCCTL, "margin set 20 --log"));
    EXPECT_IN("x {No such file", run(LIPSYNCCTL, "margin set 20 -s " + socket + 'x', 3));
    unsetenv("LIPSYNCCTL_SOCKET");
}

TEST_F(Lipsyncctl, MakesTheEnginesMessagePrintable) {
    const Engine engine(socket, {"--fault", "error 1001 \x1b[31m\"red\", \xc2\x9b \x7f"});
    const std::string before = "The lipsync server returned an error (Code 1006): {Unknown error ";
    EXPECT_EQ(run(LIPSYNCCTL, "timestamps" + at, 6),
              "lipsyncctl: " + before + "(Code 1001): \\x1b[31m\"red\", \\xc2\\x9b \\x7f}\n");
    const std::string json = run(LIPSYNCCTL, "timestamps --format json" + at, 6);
    EXPECT_IN("\\u001b[31m\\\"red\\\", \\u009b \\u007f}\"}}\n", json);
    EXPECT_EQ(nlohmann::json::parse(json.substr(0, json.find('\n')))["error"]["kind"], "refused");
    const Process watch(LIPSYNCCTL, "timestamps --watch --format csv" + at);
    watch.readUntil("error\n");
    EXPECT_TRUE(std::regex_match(
        watch.readUntil("\n"),
        std::regex("[0-9.]+,,,,,,[^,]+Z,,,,\"The .*\"\"red\"\", .*x9b .x7f[}]\"\n")));
}

TEST_F(Lipsyncctl, GivesUpAfterTheTimeout) {
    const Engine engine(socket, {"--fault", "silence", "--every", "3"});
    run(LIPSYNCCTL, "margin set 20 --timeout 30000" + at);
    const std::string output = run(LIPSYNCCTL, "ping --timeout 400 --format json" + at, 4);
    EXPECT_IN("{\"exchanges\":1,", output);
    EXPECT_IN("lipsyncctl: no answer within 400 ms\n", output);
    EXPECT_IN("{\"error\":{\"kind\":\"timeout\",\"code\":1005,\"text\":\"no a", output);
    // A watch gets its second reading on a new connection.
    EXPECT_IN("Waiting for the engine: no answer within 400 ms\n",
              run(LIPSYNCCTL, "timestamps --watch --count 4 --interval 1 --timeout 400" + at));
}

TEST_F(Lipsyncctl, GivesUpIfTheEngineDoesNotAcceptConnections) {
    const Listener listener(socket);
    // Its queue takes one more than the four that it asks for.
    std::unique_ptr<velta::zub::comms::Link> waiting[5];
    for (auto& client : waiting) {
        client = connectTo(socket);
    }
    expectFailure(LIPSYNCCTL, "capabilities --timeout 100" + at, 4,
                  "no connection within 100 ms\n");
}

TEST_F(Lipsyncctl, PingCountsRefusalsAndPrintsItsFiguresWhenInterrupted) {
    const Engine engine(socket,
                        {"--fault", "error 1002", "--fault", "error 7", "--fault", "silence"});
    Process ping(LIPSYNCCTL, "ping" + at);
    for (int request = 0; request < 3; ++request) {
        engine.readUntil("GetAudioTs");
    }
    // Now it waits for an answer.
    ping.signal(SIGINT);
    EXPECT_IN("2 exchanges, 2 refused: min ", ping.readAll());
    EXPECT_EQ(ping.wait(), 130);
}
