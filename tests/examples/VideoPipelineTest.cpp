#include <atomic>
#include <cmath>
#include <memory>
#include <thread>

#include "examples/video_pipeline/LatestReading.h"
#include "examples/video_pipeline/Steering.h"
#include "examples/video_pipeline/Watchdog.h"
#include "tests/support/Listener.h"
#include "tests/tools/Engine.h"

using VideoPipeline = tests::EngineTest;
using std::chrono::milliseconds;

TEST_F(VideoPipeline, CalculatesAcrossTheEndOfTheNtpEra) {
    const std::uint64_t before = video::ntpAddMs(0, -1500);
    EXPECT_EQ(before >> 32, 0xfffffffeU);
    EXPECT_DOUBLE_EQ(video::ntpMsBetween(before, video::ntpAddMs(before, 2000)), 2000);
    EXPECT_DOUBLE_EQ(video::ntpMsBetween(500, before), -1500 - 500 / video::ntpUnitsPerMs);
}

TEST_F(VideoPipeline, UsesNoFrozenOrOldReading) {
    const auto now = video::Reading::Clock::now();
    video::Reading reading;
    reading.audio.audioReceivingTimestamp = video::ntpNow();
    reading.setTaken({});
    EXPECT_TRUE(reading.isUsable(now));
    EXPECT_FALSE(reading.isUsable(now + milliseconds(1500)));
    reading.setTaken(reading);
    EXPECT_FALSE(reading.isUsable(now));
}

// Steers for 30 s towards a skew that drifts like the audio of a call.
TEST_F(VideoPipeline, SteersBothWaysRarelyAndInSmallSteps) {
    for (const double middle : {-55, 0, 70}) {
        video::Steering steering(20, 100);
        video::Skew skew;
        int changes = 0;
        double shift = 0;
        for (milliseconds time{0}; time < milliseconds(30000); time += milliseconds(100)) {
            const double seconds = std::chrono::duration<double>(time).count();
            const double noise = time.count() % 300 == 0 ? 4 : -2;
            const double unsteered = middle + 45 * std::sin(seconds / 5) + noise;
            changes += steering.update(video::Steering::Time(time), unsteered) ? 1 : 0;
            const double last = shift;
            const double margin = static_cast<double>(steering.marginMs());
            shift = margin - steering.pictureDelayMs();
            EXPECT_LE(std::abs(shift - last), 40);
            EXPECT_TRUE(margin == 0 || shift == margin);
            EXPECT_TRUE(margin <= 100 && steering.marginMs() % 20 == 0);
            skew.add(0, steering.isSettled() ? unsteered + shift : 0);
        }
        EXPECT_TRUE(steering.isSettled() && skew.isInside(video::allowedSkew)) << middle;
        EXPECT_LT(changes, 20) << middle;
    }
}

TEST_F(VideoPipeline, CancelsOnlyExchangesThatTakeTooLong) {
    std::atomic<int> cancelled{0};
    video::Watchdog watchdog(milliseconds(50), [&] { ++cancelled; });
    { const video::Watchdog::Deadline deadline(watchdog); }
    std::this_thread::sleep_for(milliseconds(100));
    EXPECT_EQ(cancelled, 0);
    const video::Watchdog::Deadline deadline(watchdog);
    std::this_thread::sleep_for(milliseconds(100));
    EXPECT_EQ(cancelled, 1);
}

TEST_F(VideoPipeline, ShowsPicturesWhateverTheEngineDoes) {
    SKIP_WITHOUT_SOCKET_FILES();
    tests::Process pipeline({"examples/video_pipeline", "--socket", socket, "--seconds", "8"});
    pipeline.readUntil("Waiting for the engine: Cannot connect to Audio ZUB");
    auto engine = std::make_unique<tests::Engine>(socket);
    pipeline.readUntil("Connected to " + socket);
    engine = nullptr;
    pipeline.readUntil("Waiting for the engine: An error has occured in the transport layer");
    const std::vector<std::string> options{"--fault", "silence"};
    engine = std::make_unique<tests::Engine>(socket, options);
    pipeline.readUntil("no answer within 500 ms");
    engine = nullptr;
    engine = std::make_unique<tests::Engine>(socket);
    pipeline.readUntil("Connected to " + socket);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "inside the window", pipeline.readAll());
    EXPECT_EQ(pipeline.wait(), 0);
}
