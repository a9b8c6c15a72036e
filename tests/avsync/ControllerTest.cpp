#include "avsync/Controller.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>

#include "avsync/Window.h"

using namespace velta::zub::avsync;

namespace {

// A call with its engine and its pipeline, and what became of it. Times are in seconds.
struct Call {
    double seconds = 60;
    int intervalMs = 100;
    double audioMs = 200;   // Without help. The pictures' latency is 200 ms.
    double audioStepMs = 0; // Added from one time to another.
    double pictureStepMs = 0;
    double stepFrom = 30;
    double stepUntil = 60;
    double audioNoiseMs = 0; // Standard deviations.
    double pictureNoiseMs = 0;
    double pipelineNoiseMs = 0;     // Of the time that pictures are held back.
    double engineMsPerSecond = 1e6; // How fast the engine applies a margin.
    double refusedUntil = 0;        // The engine refuses margins.

    Correction asked;
    std::size_t changes = 0; // Of what was asked.
    double secondsInside = 0;
    double lastOutside = -1; // Without the noise.
};

// The first times are before the start of the clock.
Controller::Time timeAt(double seconds) {
    return Controller::Time(std::chrono::milliseconds(std::lround(seconds * 1000) - 10000));
}

// About a normal distribution. It gives the same numbers with each standard library.
double noise(std::mt19937& random) {
    double sum = -6;
    for (int i = 0; i < 12; ++i) {
        sum += static_cast<double>(random()) / 4294967295.0;
    }
    return sum;
}

bool isInside(const Reading& reading) {
    return allowedSkew.contains(reading.audioLatencyMs - reading.pictureLatencyMs);
}

Call replay(Call call) {
    Controller controller(20, 100);
    std::mt19937 random;
    Correction inForce;
    double appliedMs = 0;
    const double interval = call.intervalMs / 1000.0;
    const double most = call.engineMsPerSecond * interval;
    for (double time = 0; time < call.seconds; time += interval) {
        const Correction before = call.asked;
        inForce.marginMs = time < call.refusedUntil ? 0 : before.marginMs;
        inForce.pictureDelayMs = before.pictureDelayMs;
        if (inForce.pictureDelayMs > 0) {
            inForce.pictureDelayMs += call.pipelineNoiseMs * noise(random);
        }
        appliedMs += std::clamp(static_cast<double>(inForce.marginMs) - appliedMs, -most, most);
        Reading reading{call.audioMs + appliedMs, 200 + inForce.pictureDelayMs, 0};
        if (time >= call.stepFrom && time < call.stepUntil) {
            reading.audioLatencyMs += call.audioStepMs;
            reading.pictureLatencyMs += call.pictureStepMs;
        }
        call.lastOutside = isInside(reading) ? call.lastOutside : time;
        reading.audioLatencyMs += call.audioNoiseMs * noise(random);
        reading.pictureLatencyMs += call.pictureNoiseMs * noise(random);
        call.secondsInside += isInside(reading) ? interval : 0;
        call.asked = controller.update(timeAt(time), reading, inForce);
        call.changes += before.marginMs != call.asked.marginMs ||
                        before.pictureDelayMs != call.asked.pictureDelayMs;
    }
    return call;
}

} // namespace

TEST(Controller, LeavesNoiseAlone) {
    for (const double noiseMs : {5.0, 10.0}) {
        for (double Call::*const noisy : {&Call::audioNoiseMs, &Call::pictureNoiseMs}) {
            Call call;
            call.seconds = 600;
            call.audioMs = 190;
            call.*noisy = noiseMs;
            call = replay(call);
            EXPECT_LE(call.changes, noiseMs) << call.audioNoiseMs; // 10 ms: one a minute.
            EXPECT_GE(call.secondsInside, 0.96 * call.seconds) << call.audioNoiseMs;
        }
    }
}

TEST(Controller, IgnoresASingleWrongReading) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double audioMs : {120.0, 186.0, 244.0, 440.0}) {
        for (const double wrongAt : {0.0, 0.1, 0.2, 10.0}) {
            Call call;
            call.seconds = 15;
            call.audioMs = audioMs;
            call.audioNoiseMs = 3;
            call.stepFrom = wrongAt - 0.05;
            call.stepUntil = wrongAt + 0.05;
            const std::size_t changes = replay(call).changes;
            for (const double errorMs : {300.0, 1000.0, 60000.0, -300.0, -5000.0, nan}) {
                for (double Call::*const wrong : {&Call::audioStepMs, &Call::pictureStepMs}) {
                    Call wrongCall = call;
                    wrongCall.*wrong = errorMs;
                    EXPECT_EQ(replay(wrongCall).changes, changes) << errorMs << ' ' << audioMs;
                }
            }
        }
    }
}

// Each row at several intervals, without and with noise. Sound and pictures are never both delayed.
TEST(Controller, AsksForTheRightCorrectionOnce) {
    constexpr double never = 60;
    struct Row {
        const char* what;
        double audioMs, audioStepMs;
        std::size_t mostChanges;
        double insideAfter;
        unsigned long leastMarginMs;
        double Call::*setting = &Call::pictureStepMs;
        double value = 0;
    };
    const Row rows[] = {
        {"in step", 200, 0, 0, 0, 0},
        {"sound 240 ms late", 440, 0, 1, 0.3, 0},
        {"sound 600 ms late", 800, 0, 1, 0.3, 0},
        {"sound 5 s late", 5200, 0, 0, never, 0},
        {"sound 110 ms early", 90, 0, 1, 0.3, 100},
        {"too early: nearer, but outside", 50, 0, 1, never, 100},
        {"sound 80 ms later", 200, 80, 1, 31.5, 0},
        {"sound 80 ms earlier", 200, -80, 1, 31.5, 80},
        {"pictures 80 ms later", 200, 0, 1, 31.5, 80, &Call::pictureStepMs, 80},
        {"sound 80 ms early, then in step, with a slow engine", 120, 80, 3, 36, 0,
         &Call::engineMsPerSecond, 20},
        // What is asked must not follow a display's times: it would be delayed by the next one.
        {"held back almost as asked", 440, 0, 1, 0.3, 0, &Call::pipelineNoiseMs, 4},
        {"margin refused", 120, 0, 1, 20.3, 80, &Call::refusedUntil, 20},
    };
    for (const Row& row : rows) {
        for (const int intervalMs : {10, 100, 1000}) {
            for (const double noiseMs : {0.0, 3.0}) {
                Call call;
                call.intervalMs = intervalMs;
                call.audioMs = row.audioMs;
                call.audioStepMs = row.audioStepMs;
                call.audioNoiseMs = noiseMs;
                call.*row.setting = row.value;
                call = replay(call);
                SCOPED_TRACE(row.what);
                EXPECT_LE(call.changes, row.mostChanges) << intervalMs << ' ' << noiseMs;
                // The median of three needs two or three readings.
                EXPECT_LT(call.lastOutside, row.insideAfter + 0.0021 * intervalMs);
                EXPECT_GE(call.asked.marginMs, row.leastMarginMs);
                EXPECT_TRUE(call.asked.marginMs == 0 || call.asked.pictureDelayMs == 0);
            }
        }
    }
}

TEST(Controller, AsksOnlyForWhatTheEngineCanDo) {
    const unsigned long rows[][3] = {{20, 0, 0}, {25, 60, 50}, {200, 100, 0}, {0, 30, 30}};
    for (const auto& [granularityMs, maxMarginMs, marginMs] : rows) {
        Controller controller(granularityMs, maxMarginMs);
        Correction inForce;
        for (int i = 0; i < 100; ++i) {
            inForce = controller.update(timeAt(i / 10.0), {100, 200, 0}, inForce);
        }
        EXPECT_EQ(inForce.marginMs, marginMs) << granularityMs << ' ' << maxMarginMs;
    }
}

// What was measured before says nothing about a new call, or after a long pause. So the first two
// readings of it decide nothing.
TEST(Controller, StartsAnew) {
    for (const double pauseSeconds : {0.0, 6.0}) {
        Controller controller(20, 100);
        double time = 0;
        Correction inForce;
        const auto delayAfter = [&](double lateMs, int readings) {
            for (; readings > 0; --readings, time += 0.1) {
                const Reading reading{lateMs, inForce.pictureDelayMs, 0};
                inForce = controller.update(timeAt(time), reading, inForce);
            }
            return inForce.pictureDelayMs;
        };
        const double delayMs = delayAfter(80, 50);
        EXPECT_GT(delayMs, 50);
        time += pauseSeconds;
        if (pauseSeconds == 0) {
            controller.restart();
        }
        EXPECT_EQ(delayAfter(400, 2), delayMs);
        EXPECT_GT(delayAfter(400, 1), 350);
    }
}
