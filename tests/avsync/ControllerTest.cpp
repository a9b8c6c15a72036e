#include "avsync/Controller.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "tests/avsync/Replay.h"

using tests::Call;
using tests::Outcome;
using tests::replay;
using tests::steady;
using tests::step;
using tests::timeAt;
using velta::zub::avsync::Controller;
using velta::zub::avsync::Correction;
using velta::zub::avsync::Reading;

TEST(Controller, LeavesNoiseAlone) {
    struct Row {
        double audioNoiseMs;
        double pictureNoiseMs;
        double changesPerMinute;
        double inside;
    };
    const std::vector<Row> rows{
        {10, 0, 1, 0.96},
        {0, 10, 1, 0.95},
        {5, 0, 0.5, 0.96},
        {0, 5, 0.5, 0.96},
    };
    for (const Row& row : rows) {
        double changes = 0;
        double inside = 0;
        constexpr unsigned calls = 4;
        for (unsigned seed = 1; seed <= calls; ++seed) {
            Call call;
            call.audio = steady(186);
            call.seconds = 300;
            call.audioNoiseMs = row.audioNoiseMs;
            call.pictureNoiseMs = row.pictureNoiseMs;
            call.seed = seed;
            const Outcome outcome = replay(call);
            changes += static_cast<double>(outcome.changes) / 5 / calls;
            inside += outcome.inside / calls;
        }
        EXPECT_LE(changes, row.changesPerMinute) << row.audioNoiseMs << ' ' << row.pictureNoiseMs;
        EXPECT_GE(inside, row.inside) << row.audioNoiseMs << ' ' << row.pictureNoiseMs;
    }
}

TEST(Controller, IgnoresASingleWrongReading) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double error : {300.0, 1000.0, 60000.0, -300.0, -5000.0, nan, infinity, -infinity}) {
        for (const double audioMs : {120.0, 186.0, 200.0, 244.0, 440.0}) {
            for (const double at : {0.0, 0.1, 0.2, 10.0}) {
                for (const double noiseMs : {0.0, 3.0}) {
                    Call call;
                    call.seconds = 15;
                    call.audio = steady(audioMs);
                    call.audioNoiseMs = noiseMs;
                    const std::size_t changes = replay(call).changes;
                    const auto wrong = [=](double ms) {
                        return [=](double time) {
                            return std::abs(time - at) < 0.05 ? ms + error : ms;
                        };
                    };
                    call.audio = wrong(audioMs);
                    EXPECT_EQ(replay(call).changes, changes)
                        << error << ' ' << audioMs << ' ' << at;
                    call.audio = steady(audioMs);
                    call.pictures = wrong(200);
                    EXPECT_EQ(replay(call).changes, changes)
                        << error << ' ' << audioMs << ' ' << at;
                }
            }
        }
    }
}

TEST(Controller, AnswersAStepOnceAndSoon) {
    for (const int intervalMs : {10, 50, 100, 250, 1000}) {
        for (const double ms : {80.0, -80.0}) {
            for (const double noiseMs : {0.0, 3.0}) {
                Call call;
                call.intervalMs = intervalMs;
                call.audioNoiseMs = noiseMs;
                call.audio = step(200, 200 + ms, 30);
                const Outcome sound = replay(call);
                call.audio = steady(200);
                call.pictures = step(200, 200 + ms, 30);
                const Outcome pictures = replay(call);
                for (const Outcome& outcome : {sound, pictures}) {
                    // The median of three needs two readings.
                    const double allowed = std::max(1.5, 2.0 * intervalMs / 1000);
                    EXPECT_LT(outcome.lastOutside, 30 + allowed) << intervalMs << ' ' << ms;
                    EXPECT_EQ(outcome.changes, 1u) << intervalMs << ' ' << ms << ' ' << noiseMs;
                }
            }
        }
    }
}

TEST(Controller, ChoosesWhatToDelay) {
    struct Row {
        double skewMs;
        unsigned long leastMarginMs;
        unsigned long mostMarginMs;
        double leastDelayMs;
        double mostDelayMs;
    };
    const std::vector<Row> rows{
        {240, 0, 0, 195, 255},   {600, 0, 0, 555, 615},  {5000, 0, 0, 0, 0},
        {-5000, 0, 0, 0, 0},     {0, 0, 0, 0, 0},        {-60, 60, 100, 0, 0},
        {-100, 100, 100, 0, 0},  {-150, 100, 100, 0, 0}, // Nearer, though still outside.
        {-1700, 100, 100, 0, 0},
    };
    for (const Row& row : rows) {
        for (const double noiseMs : {0.0, 5.0}) {
            Call call;
            call.audio = steady(200 + row.skewMs);
            call.audioNoiseMs = noiseMs;
            const Outcome outcome = replay(call);
            EXPECT_LE(outcome.changes, 1u) << row.skewMs << ' ' << noiseMs;
            EXPECT_GE(outcome.asked.marginMs, row.leastMarginMs) << row.skewMs << ' ' << noiseMs;
            EXPECT_LE(outcome.asked.marginMs, row.mostMarginMs) << row.skewMs << ' ' << noiseMs;
            EXPECT_GE(outcome.asked.pictureDelayMs, row.leastDelayMs) << row.skewMs;
            EXPECT_LE(outcome.asked.pictureDelayMs, row.mostDelayMs) << row.skewMs;
        }
    }
}

TEST(Controller, AsksOnlyForWhatTheEngineCanDo) {
    struct Row {
        unsigned long granularityMs;
        unsigned long maxMarginMs;
        unsigned long marginMs;
    };
    for (const Row& row : {Row{20, 0, 0}, Row{25, 60, 50}, Row{200, 100, 0}, Row{0, 30, 30}}) {
        Controller controller(row.granularityMs, row.maxMarginMs);
        Correction inForce;
        for (int i = 0; i < 100; ++i) {
            inForce = controller.update(timeAt(i / 10.0), {100, 200, 0}, inForce);
        }
        EXPECT_EQ(inForce.marginMs, row.marginMs) << row.granularityMs << ' ' << row.maxMarginMs;
    }
}

TEST(Controller, WaitsForASlowEngine) {
    for (const double audioMs : {100.0, 120.0, 130.0, 150.0, 180.0}) {
        for (const double noiseMs : {0.0, 3.0}) {
            for (const double backMs : {audioMs, 200.0}) {
                Call call;
                call.audio = step(audioMs, backMs, 30);
                call.audioNoiseMs = noiseMs;
                const Outcome atOnce = replay(call);
                call.engineMsPerSecond = 20;
                const Outcome slowly = replay(call);
                EXPECT_LE(slowly.changes, atOnce.changes + 1) << audioMs << ' ' << noiseMs;
                EXPECT_LT(slowly.lastOutside, 36) << audioMs << ' ' << noiseMs;
            }
        }
    }
}

TEST(Controller, WaitsForASlowPipeline) {
    for (const double seconds : {0.1, 0.3, 0.8}) {
        for (const double audioMs : {280.0, 440.0, 800.0}) {
            Call call;
            call.audio = steady(audioMs);
            call.audioNoiseMs = 3;
            call.pipelineSeconds = seconds;
            const Outcome outcome = replay(call);
            EXPECT_EQ(outcome.changes, 1u) << seconds << ' ' << audioMs;
            EXPECT_LT(outcome.lastOutside, seconds + 0.5) << audioMs;
        }
    }
}

// What was measured before says nothing about a new call, or after a long pause. So the first two
// readings of it decide nothing.
TEST(Controller, StartsAnew) {
    for (const bool isRestarted : {true, false}) {
        Controller controller(20, 100);
        Correction inForce;
        double time = 0;
        const auto take = [&](double audioMs) {
            time += 0.1;
            const Reading reading{audioMs + static_cast<double>(inForce.marginMs),
                                  200 + inForce.pictureDelayMs, 0};
            inForce = controller.update(timeAt(time), reading, inForce);
            return inForce;
        };
        for (int i = 0; i < 50; ++i) {
            take(280);
        }
        const Correction before = inForce;
        EXPECT_GT(before.pictureDelayMs, 50);
        if (isRestarted) {
            controller.restart();
        } else {
            time += 6;
        }
        EXPECT_EQ(take(600).pictureDelayMs, before.pictureDelayMs);
        EXPECT_EQ(take(600).pictureDelayMs, before.pictureDelayMs);
        EXPECT_GT(take(600).pictureDelayMs, 350);
    }
}
