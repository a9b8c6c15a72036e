#include "tools/azubsim/engine/AudioEngine.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <fstream>

#include "avsync/Ntp.h"
#include "tests/support/TemporaryDirectory.h"

namespace {

using namespace azubsim;
using std::chrono::milliseconds;
using velta::zub::avsync::ntpMsBetween;
using Time = AudioEngine::Clock::time_point;

class Engines : public testing::Test {
protected:
    Engines() {
        engine.setNetworkMs(80);
        engine.setJitterMs(0);
    }

    static Time after(double seconds) { return start + milliseconds(std::llround(1000 * seconds)); }

    // How long before its arrival the last packet was captured, by the far end's clock, and from
    // its arrival to its rendering.
    Timestamps expect(double seconds, double travelMs, double waitMs) const {
        Timestamps timestamps;
        engine.timestamps(after(seconds), timestamps);
        EXPECT_NEAR(ntpMsBetween(timestamps.capture, timestamps.receiving), travelMs, 1e-3);
        EXPECT_NEAR(ntpMsBetween(timestamps.receiving, timestamps.rendering), waitMs, 1e-3);
        return timestamps;
    }

    static constexpr Time start{std::chrono::seconds(1800000000)};
    AudioEngine engine;
};

TEST_F(Engines, DriftWithoutJumps) {
    engine.setDriftPpm(-250.5, start);
    expect(0, 80, 10);
    expect(1000.013, 80 + 250.5, 10);
    engine.setDriftPpm(100000, after(1000.013));
    expect(1000.013, 80 + 250.5, 10);
    expect(1002.013, 80 + 250.5 - 200, 10);
    engine.setOffsetMs(-5, after(1002.013));
    expect(1002.013, 80 + 5, 10);
    expect(1003.013, 80 + 5 - 100, 10);
}

TEST_F(Engines, StandStillWhileTheyAreFrozen) {
    engine.freeze(start);
    engine.setMargin(100, start);
    engine.setNetworkMs(500);
    engine.freeze(after(1));
    EXPECT_EQ(expect(2, 80, 10).receiving, expect(0, 80, 10).receiving);
    engine.unfreeze();
    expect(2, 500, 110);
}

TEST_F(Engines, ApplyAMarginAtTheRateOfTheSlew) {
    engine.setSlew(20, start);
    engine.setMargin(60, start);
    expect(0, 80, 10);
    expect(1, 80, 10 + 20);
    engine.setMargin(0, after(2));
    expect(2.5, 80, 10 + 30);
    engine.setSlew(10, after(2.5));
    expect(3, 80, 10 + 25);
    expect(60, 80, 10);
    engine.setMargin(100, after(60));
    engine.setSlew(0, after(60));
    expect(60, 80, 10 + 100);
    engine.setSlew(20, after(61));
    engine.resetMargin();
    expect(61, 80, 10);
}

TEST_F(Engines, FollowANetworkAgainAndAgain) {
    const tests::TemporaryDirectory directory;
    const std::string file = directory.path() + "/network.csv";
    // The last row has less latency than the depth and the loudspeaker need.
    std::ofstream(file) << "time_s,audio_ms,depth_ms,picture_ms\n"
                           "0,70.5,13,0\n0.1,200,100.6,0\r\n0.3,100,95,0\n";
    engine.follow(Network(file));
    engine.startNetwork(start);
    engine.startNetwork(after(0.2));
    engine.setMargin(40, start);
    const auto expectRow = [&](double seconds, double audioMs, double waitMs, unsigned depthMs) {
        EXPECT_EQ(expect(seconds, audioMs - waitMs, waitMs + 40).jitterDepthMs, depthMs);
    };
    for (const double seconds : {-0.5, 0.0, 0.099, 0.5, 500.0}) {
        expectRow(seconds, 70.5, 23, 13);
    }
    expectRow(500.1, 200, 110.6, 101);
    expectRow(0.299, 200, 110.6, 101);
    expectRow(0.3, 100, 100, 95);
}

} // namespace
