#include <chrono>

#include "tests/tools/Engine.h"
#include "tools/azubsim/AudioEngine.h"

using azubsim::AudioEngine;
using azubsim::Timestamps;
using std::chrono::milliseconds;
using std::chrono::seconds;

using Scenario = tests::EngineTest;

namespace {

constexpr double unitsPerMs = 4294967.296;
const AudioEngine::Clock::time_point start{seconds(1800000000)};

Timestamps timestamps(const AudioEngine& engine, AudioEngine::Clock::time_point now) {
    Timestamps result;
    engine.timestamps(now, result);
    return result;
}

// How long before its arrival the last packet was captured, by the far end's clock.
double onTheWayMs(const AudioEngine& engine, AudioEngine::Clock::time_point now) {
    const Timestamps result = timestamps(engine, now);
    return static_cast<double>(static_cast<std::int64_t>(result.receiving - result.capture)) /
           unitsPerMs;
}

} // namespace

TEST_F(Scenario, TheFarEndsClockDriftsWithoutJumps) {
    constexpr double tolerance = 1e-3;
    AudioEngine engine;
    engine.setNetwork(milliseconds(80));
    engine.setDriftPpm(-250.5, start);
    EXPECT_NEAR(onTheWayMs(engine, start), 80, tolerance);
    const auto later = start + seconds(1000) + milliseconds(13);
    EXPECT_NEAR(onTheWayMs(engine, later), 80 + 250.5, tolerance);
    engine.setDriftPpm(100000, later);
    EXPECT_NEAR(onTheWayMs(engine, later), 80 + 250.5, tolerance);
    EXPECT_NEAR(onTheWayMs(engine, later + seconds(2)), 80 + 250.5 - 200, tolerance);
    engine.setOffsetMs(-5, later + seconds(2));
    EXPECT_NEAR(onTheWayMs(engine, later + seconds(2)), 80 + 5, tolerance);
    EXPECT_NEAR(onTheWayMs(engine, later + seconds(3)), 80 + 5 - 100, tolerance);
}

TEST_F(Scenario, TimestampsStandStillWhileTheyAreFrozen) {
    AudioEngine engine;
    engine.setJitter(milliseconds(0));
    engine.freeze(start);
    const Timestamps frozen = timestamps(engine, start);
    engine.setMargin(100);
    engine.setNetwork(milliseconds(500));
    engine.freeze(start + seconds(1));
    const Timestamps later = timestamps(engine, start + seconds(2));
    EXPECT_EQ(later.capture, frozen.capture);
    EXPECT_EQ(later.rendering, frozen.rendering);
    EXPECT_EQ(later.receiving, frozen.receiving);
    engine.unfreeze();
    const Timestamps thawed = timestamps(engine, start + seconds(2));
    EXPECT_EQ(thawed.receiving - frozen.receiving, 2ULL << 32);
    EXPECT_NEAR(static_cast<double>(thawed.rendering - thawed.receiving), 110 * unitsPerMs, 1);
}

TEST_F(Scenario, TimestampsDoNotWrapBelowZero) {
    AudioEngine engine;
    const AudioEngine::Clock::time_point in1900{-seconds(2208988800)};
    engine.setOffsetMs(-1000, in1900);
    EXPECT_EQ(timestamps(engine, in1900).capture, 0U);
}
