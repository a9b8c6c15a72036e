#include "tools/azubsim/engine/AudioEngine.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>

#include "avsync/Ntp.h"
#include "tests/support/TemporaryDirectory.h"

namespace {

using namespace azubsim;
using std::chrono::milliseconds;
using std::chrono::seconds;
using velta::zub::avsync::ntpMsBetween;
using Time = AudioEngine::Clock::time_point;

class Engines : public testing::Test {
protected:
    Timestamps at(Time now) const {
        Timestamps result;
        engine.timestamps(now, result);
        return result;
    }

    // How long before its arrival the last packet was captured, by the far end's clock.
    void expectTravel(double ms, Time now) const {
        EXPECT_NEAR(ntpMsBetween(at(now).capture, at(now).receiving), ms, 1e-3);
    }

    // From its arrival to its rendering.
    void expectWait(double ms, Time now) const {
        EXPECT_NEAR(ntpMsBetween(at(now).receiving, at(now).rendering), ms, 1e-3);
    }

    const Time start{seconds(1800000000)};
    AudioEngine engine;
};

TEST_F(Engines, DriftWithoutJumps) {
    engine.setNetworkMs(80);
    engine.setDriftPpm(-250.5, start);
    expectTravel(80, start);
    const auto later = start + seconds(1000) + milliseconds(13);
    expectTravel(80 + 250.5, later);
    engine.setDriftPpm(100000, later);
    expectTravel(80 + 250.5, later);
    expectTravel(80 + 250.5 - 200, later + seconds(2));
    engine.setOffsetMs(-5, later + seconds(2));
    expectTravel(80 + 5, later + seconds(2));
    expectTravel(80 + 5 - 100, later + seconds(3));
}

TEST_F(Engines, StandStillWhileTheyAreFrozen) {
    engine.setJitterMs(0);
    engine.freeze(start);
    const Timestamps frozen = at(start);
    engine.setMargin(100, start);
    engine.setNetworkMs(500);
    engine.freeze(start + seconds(1));
    const Timestamps later = at(start + seconds(2));
    EXPECT_EQ(later.capture, frozen.capture);
    EXPECT_EQ(later.rendering, frozen.rendering);
    EXPECT_EQ(later.receiving, frozen.receiving);
    engine.unfreeze();
    EXPECT_EQ(at(start + seconds(2)).receiving - frozen.receiving, 2ULL << 32);
    expectWait(110, start + seconds(2));
}

TEST_F(Engines, ApplyAMarginAtTheRateOfTheSlew) {
    engine.setJitterMs(0);
    engine.setSlew(20, start);
    engine.setMargin(60, start);
    expectWait(10, start);
    expectWait(10 + 20, start + seconds(1));
    engine.setMargin(0, start + seconds(2));
    expectWait(10 + 30, start + milliseconds(2500));
    engine.setSlew(10, start + milliseconds(2500));
    expectWait(10 + 25, start + seconds(3));
    expectWait(10, start + seconds(60));
    engine.setMargin(100, start + seconds(60));
    engine.setSlew(0, start + seconds(60));
    expectWait(10 + 100, start + seconds(60));
    engine.setSlew(20, start + seconds(61));
    engine.resetMargin();
    expectWait(10, start + seconds(61));
}

TEST_F(Engines, FollowANetworkAgainAndAgain) {
    const tests::TemporaryDirectory directory;
    const std::string file = directory.path() + "/network.csv";
    // The last row has less latency than the depth and the loudspeaker need.
    std::ofstream(file) << "time_s,audio_ms,depth_ms,picture_ms\n"
                           "0,70.5,13,0\n0.1,200,100.6,0\r\n0.3,100,95,0\n";
    engine.follow(Network(file));
    engine.startNetwork(start);
    engine.startNetwork(start + milliseconds(200));
    engine.setMargin(40, start);
    const auto expect = [&](int afterMs, double audioMs, double waitMs, std::uint64_t depthMs) {
        const Time now = start + milliseconds(afterMs);
        expectTravel(audioMs - waitMs, now);
        expectWait(waitMs + 40, now);
        EXPECT_EQ(at(now).jitterDepthMs, depthMs);
    };
    for (const int afterMs : {-500, 0, 99, 500, 500000}) {
        expect(afterMs, 70.5, 23, 13);
    }
    expect(500100, 200, 110.6, 101);
    expect(299, 200, 110.6, 101);
    expect(300, 100, 100, 95);
}

} // namespace
