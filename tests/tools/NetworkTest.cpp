#include <chrono>
#include <fstream>

#include "avsync/Ntp.h"
#include "tests/tools/Engine.h"
#include "tools/azubsim/engine/AudioEngine.h"

using azubsim::AudioEngine;
using azubsim::Timestamps;
using std::chrono::milliseconds;
using velta::zub::avsync::ntpMsBetween;

namespace {

const std::string columns = "time_s,audio_ms,depth_ms,picture_ms\n";

class Network : public tests::EngineTest {
protected:
    const std::string& write(const std::string& text) const {
        std::ofstream(file) << text;
        return file;
    }

    const std::string file = directory.path() + "/network.csv";
};

} // namespace

TEST_F(Network, IsFollowedByTimeAndAgain) {
    // The last row has less latency than the depth and the loudspeaker need.
    const azubsim::Network network(
        write(columns + "0,70.5,13,0\n0.1,200,100.6,0\r\n0.3,100,95,0\n"));
    const AudioEngine::Clock::time_point start{std::chrono::seconds(1800000000)};
    AudioEngine engine;
    engine.follow(network);
    engine.startNetwork(start);
    engine.startNetwork(start + milliseconds(200));
    engine.setMargin(40, start);
    const auto expect = [&](int afterMs, double audioMs, double waitMs, std::uint64_t depthMs) {
        Timestamps result;
        engine.timestamps(start + milliseconds(afterMs), result);
        EXPECT_NEAR(ntpMsBetween(result.capture, result.rendering), audioMs + 40, 1e-3);
        EXPECT_NEAR(ntpMsBetween(result.receiving, result.rendering), waitMs + 40, 1e-3);
        EXPECT_EQ(result.jitterDepthMs, depthMs);
    };
    for (const int afterMs : {-500, 0, 99, 500, 500000}) {
        expect(afterMs, 70.5, 23, 13);
    }
    expect(500100, 200, 110.6, 101);
    expect(299, 200, 110.6, 101);
    expect(300, 100, 100, 95);
}

TEST_F(Network, BeginsWithTheFirstClientAndEndsWithACommand) {
    write(columns + "0,170,30,0\n1,260,50,0\n86400,0,0,0\n");
    const tests::Engine engine(socket, {"--network", file});
    const std::string readings =
        run(LIPSYNCCTL, "timestamps --watch --count 2 --interval 1100" + at);
    EXPECT_TRUE(std::regex_match(readings, std::regex(".*latency 170.0 ms  jitter 30 ms\n"
                                                      ".*latency 260.0 ms  jitter 50 ms\n")))
        << readings;
    engine.write("status\nnetwork 80\njitter 10\n");
    engine.readUntil("call on\nnetwork from a file\nslew 0 ms/s\n");
    engine.readUntil("jitter 10 ms\n");
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "latency 100.0 ms  jitter 10 ms",
                        run(LIPSYNCCTL, "timestamps" + at));
}

TEST_F(Network, MistakesAreNamedWithTheirLine) {
    const auto expectError = [&](const std::string& text, const std::string& error) {
        expectFailure(AZUBSIM, "engine --network " + write(text) + at, 1,
                      "azubsim: " + file + error);
    };
    const std::string rows = columns + "0,70,13,119.7\n";
    expectError(columns, ": it has no rows\n");
    expectFailure(AZUBSIM, "engine --network " + file + "/x" + at, 1,
                  "azubsim: " + file + "/x: Not a directory\n");
    expectError("0,70,13,119.7\n", ":1: the header must be time_s,audio_ms,depth_ms,picture_ms\n");
    for (const char* const line : {"0.1,70,13", "0.1,70,13,", "0.1,70,13,119,1", "0.1,70,13,119,",
                                   "0.1,nan,13,119", "0.1, 70,13,119", ""}) {
        expectError(rows + line + "\n1,2,3,x\n",
                    std::string(":3: '") + line + "' is not four numbers\n");
    }
    expectError(rows + "0,70,13,119\n", ":3: the time must be later");
    expectError(columns + "-1,70,13,119\n", ":2: the time must be later");
    expectError(rows + "1,-1,13,119\n", ":3: latencies and depth must be from 0 to 10000 ms\n");
}
