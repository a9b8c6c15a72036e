#include "avsync/details/Freshness.h"

#include <gtest/gtest.h>

using velta::zub::avsync::ntpAddMs;
using velta::zub::avsync::details::Freshness;
using Verdict = Freshness::Verdict;

namespace {

// Readings ten times a second.
struct Engine {
    // How the next reading is judged, of sound that was received at this time of the engine's
    // clock.
    Verdict read(double receivedMs) {
        Freshness::Timestamps timestamps;
        timestamps.audioReceivingTimestamp = ntpAddMs(0, receivedMs);
        return freshness.judge(Freshness::Time(std::chrono::milliseconds(nowMs += 100)),
                               timestamps);
    }

    // Reads for some seconds, in each of which the clock gains `gainMs`. Returns the last verdict.
    Verdict readFor(int seconds, double aheadMs, double gainMs = 0) {
        Verdict verdict = Verdict::Fresh;
        for (int i = 1; i <= 10 * seconds; ++i) {
            verdict = read(nowMs + 100 + aheadMs + gainMs * i / 10);
        }
        return verdict;
    }

    Freshness freshness;
    int nowMs = 0;
};

} // namespace

TEST(Freshness, NeedsNoCommonClock) {
    Engine engine;
    for (const double aheadMs : {-1500.0, 1e7, -1e7}) {
        EXPECT_EQ(engine.read(aheadMs), Verdict::Fresh);
        EXPECT_EQ(engine.readFor(2, aheadMs), Verdict::Fresh);
    }
    // Three hours with a clock that is slow by 300 ppm.
    EXPECT_EQ(engine.readFor(10000, -1e7, -0.3), Verdict::Fresh);
}

TEST(Freshness, TellsAPauseFromAnswersThatAreLate) {
    Engine engine;
    EXPECT_EQ(engine.readFor(1, 0), Verdict::Fresh);
    // The sound pauses for five seconds.
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(engine.read(1000), Verdict::Frozen);
    }
    EXPECT_EQ(engine.readFor(1, -900), Verdict::Fresh);
    EXPECT_EQ(engine.readFor(2, -1100), Verdict::Stale);
    EXPECT_EQ(engine.readFor(1, 0), Verdict::Fresh);
    EXPECT_EQ(engine.readFor(4, -1100), Verdict::Lagging);
}
