#include "avsync/Controller.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
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

namespace {

std::function<void(Call&)> audioStep(double before, double after) {
    return [=](Call& call) { call.audio = step(before, after, 30); };
}

std::function<void(Call&)> audio(double ms) {
    return audioStep(ms, ms);
}

std::function<void(Call&)> pictureStep(double after) {
    return [=](Call& call) { call.pictures = step(200, after, 30); };
}

std::function<void(Call&)> slowEngine(double before, double after) {
    return [=](Call& call) {
        audioStep(before, after)(call);
        call.engineMsPerSecond = 20;
    };
}

std::function<void(Call&)> refused(double ms, double until) {
    return [=](Call& call) {
        audio(ms)(call);
        call.refusedUntil = until;
    };
}

std::function<void(Call&)> slowPipeline(double seconds) {
    return [=](Call& call) {
        audio(440)(call);
        call.pipelineSeconds = seconds;
    };
}

std::function<void(Call&)> heldBack(double earliestMs, double latestMs) {
    return [=](Call& call) {
        audio(440)(call);
        call.earliestMs = earliestMs;
        call.latestMs = latestMs;
    };
}

} // namespace

TEST(Controller, LeavesNoiseAlone) {
    struct Row {
        double audioNoiseMs, pictureNoiseMs, changesPerMinute, inside;
    };
    const std::vector<Row> rows{
        {10, 0, 1, 0.96}, {0, 10, 1, 0.96}, {5, 0, 0.5, 0.96}, {0, 5, 0.5, 0.96}};
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

// Each row at several intervals, without and with noise.
TEST(Controller, AsksForTheRightCorrectionOnce) {
    struct Row {
        const char* what;
        std::function<void(Call&)> prepare;
        std::size_t mostChanges;
        double insideAfter; // In seconds.
        unsigned long leastMarginMs, mostMarginMs;
        double leastDelayMs, mostDelayMs;
    };
    constexpr double never = 60;
    const std::vector<Row> rows{
        {"in step", [](Call&) {}, 0, 0, 0, 0, 0, 0},
        {"sound 240 ms late", audio(440), 1, 0.3, 0, 0, 195, 255},
        {"sound 600 ms late", audio(800), 1, 0.3, 0, 0, 555, 615},
        {"sound 5 s late", audio(5200), 0, never, 0, 0, 0, 0},
        {"sound 5 s early", audio(-4800), 0, never, 0, 0, 0, 0},
        {"sound 60 ms early", audio(140), 1, 0.3, 60, 100, 0, 0},
        {"as early as a margin can help", audio(90), 1, 0.3, 100, 100, 0, 0},
        {"earlier: nearer, but outside", audio(50), 1, never, 100, 100, 0, 0},
        {"far too early", audio(-1500), 1, never, 100, 100, 0, 0},
        {"sound 80 ms later", audioStep(200, 280), 1, 31.5, 0, 0, 35, 95},
        {"sound 80 ms earlier", audioStep(200, 120), 1, 31.5, 80, 100, 0, 0},
        {"pictures 80 ms later", pictureStep(280), 1, 31.5, 80, 100, 0, 0},
        {"pictures 80 ms earlier", pictureStep(120), 1, 31.5, 0, 0, 35, 95},
        {"slow engine", slowEngine(120, 120), 2, 5, 80, 100, 0, 0},
        {"slow engine, there and back", slowEngine(120, 200), 3, 36, 0, 40, 0, 0},
        {"slow pipeline", slowPipeline(0.3), 1, 0.6, 0, 0, 195, 255},
        {"slower than two readings", slowPipeline(0.8), 1, 1.1, 0, 0, 195, 255},
        // What is asked must not follow a display's times: it would be delayed by the next one.
        {"held back almost as asked", heldBack(-8, 8), 1, 0.3, 0, 0, 195, 255},
        {"held back more than asked", heldBack(0, 16), 1, 0.3, 0, 0, 195, 255},
        {"margin refused for a while", refused(120, 20), 1, 20.3, 80, 100, 0, 0},
        {"margin refused for ever", refused(120, never), 1, never, 80, 100, 0, 0},
        {"margin that cannot reach, refused", refused(50, never), 1, never, 100, 100, 0, 0},
    };
    for (const Row& row : rows) {
        for (const int intervalMs : {10, 50, 100, 250, 1000}) {
            for (const double noiseMs : {0.0, 3.0}) {
                SCOPED_TRACE(std::string(row.what) + ", every " + std::to_string(intervalMs) +
                             " ms, noise " + std::to_string(noiseMs));
                Call call;
                call.intervalMs = intervalMs;
                call.audioNoiseMs = noiseMs;
                row.prepare(call);
                const Outcome outcome = replay(call);
                EXPECT_LE(outcome.changes, row.mostChanges);
                // The median of three needs two or three readings.
                EXPECT_LT(outcome.lastOutside, row.insideAfter + 0.0021 * intervalMs);
                EXPECT_GE(outcome.asked.marginMs, row.leastMarginMs);
                EXPECT_LE(outcome.asked.marginMs, row.mostMarginMs);
                EXPECT_GE(outcome.asked.pictureDelayMs, row.leastDelayMs);
                EXPECT_LE(outcome.asked.pictureDelayMs, row.mostDelayMs);
            }
        }
    }
}

TEST(Controller, AsksOnlyForWhatTheEngineCanDo) {
    struct Row {
        unsigned long granularityMs, maxMarginMs, marginMs;
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
