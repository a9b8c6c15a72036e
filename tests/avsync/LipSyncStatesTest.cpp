#include <atomic>
#include <tuple>

#include "tests/avsync/LipSyncTest.h"
#include "tests/replacements/Memory.h"

using tests::LipSyncTest;
using tests::ScriptedEngine;

TEST_F(LipSyncTest, HasAnAnswerToEachStateOfTheEngine) {
    const std::tuple<const char*, const char*, bool, const char*, bool> rows[] = {
        {"call off", "performing a call (Code 1007)", true, "call on", true},
        {"freeze on", "The timestamps do not change", true, "freeze off", false},
        {"fault error 1001 no", "returned an error (Code 1006)", true, "fault none", false},
        {"fault missing Result", "(Code 1005): {Serializer", false, "fault none", true},
        {"fault close-before", "Closed by distant", false, "fault none", false},
        {"fault silence", "(Code 1005): no answer within 300 ms", false, "fault none", false},
        {"down 0.3", "Cannot connect to Audio ZUB (Code 1004)", false, "call on", true},
    };
    const tests::Engine engine(socket);
    engine.write("jitter 20\n");
    LipSync lipSync(options);
    const auto marginMs = awaitSteered(lipSync).marginMs;
    EXPECT_GT(marginMs, 0);
    for (const auto& [command, message, staysConnected, end, setsMargin] : rows) {
        engine.write(std::string(command) + '\n');
        engine.readUntil(command);
        wasDisconnected = false;
        SCOPED_TRACE(command);
        const auto status = awaitMessage(lipSync, message);
        EXPECT_FALSE(status.isSteered);
        EXPECT_EQ(status.marginMs, marginMs);
        engine.write(std::string(end) + '\n');
        if (setsMargin) {
            engine.readUntil("ok   margin " + std::to_string(marginMs));
        }
        EXPECT_EQ(awaitSteered(lipSync).marginMs, marginMs);
        EXPECT_EQ(wasDisconnected, !staysConnected);
    }
    showsPictures = false;
    const auto before = lipSync.status();
    const auto status = awaitMessage(lipSync, "No picture in the last second");
    EXPECT_FALSE(status.isSteered);
    EXPECT_GT(status.readings, before.readings + 10);
    EXPECT_EQ(status.marginMs, marginMs);
    EXPECT_EQ(status.marginChanges, 1);
}

TEST_F(LipSyncTest, AsksRarelyWhileItGetsNothing) {
    std::atomic<int> attempts{0};
    options.onReading = [&](const LipSync::Status&) { ++attempts; };
    const auto expectFew = [&](const char* message, int most) {
        LipSync lipSync(options);
        awaitMessage(lipSync, message);
        attempts = 0;
        std::this_thread::sleep_for(milliseconds(1500));
        EXPECT_TRUE(attempts >= 1 && attempts <= most) << message << attempts;
    };
    expectFew("(Code 1004)", 5);
    const tests::Engine engine(socket, {"--no-call"});
    expectFew("(Code 1007)", 2);
    engine.write("call on\nfault error 1001 no\n");
    expectFew("(Code 1006)", 5);
}

TEST_F(LipSyncTest, SteersThePicturesWhileTheEngineRefusesMargins) {
    ScriptedEngine engine(options);
    engine.clockMs = -1500;
    engine.margins = ScriptedEngine::Refused;
    LipSync lipSync(options);
    const auto start = Clock::now();
    EXPECT_LT(awaitMessage(lipSync, "Invalid parameter (Code 1002)").skewMs, -70);
    wasDisconnected = false;
    pictureMs = 0;
    const auto status = await(lipSync, [](const LipSync::Status& now) {
        return now.isSteered && velta::zub::avsync::allowedSkew.contains(now.skewMs);
    });
    EXPECT_GT(status.pictureDelayMs, 40);
    EXPECT_IN("(Code 1006)", status.message);
    engine.margins = ScriptedEngine::Accepted;
    engine.clockMs = 3600000;
    pictureMs = 170;
    EXPECT_GT(awaitSteered(lipSync).marginMs, 0);
    EXPECT_GT(Clock::now() - start, std::chrono::seconds(5));
    EXPECT_FALSE(wasDisconnected);
    // One refused, one repeated, one that was decided on.
    EXPECT_LE(engine.marginRequests, 4);
}

TEST_F(LipSyncTest, GoesOnWhenMemoryRunsOut) {
    const tests::Engine engine(socket);
    std::atomic<int> next{1};
    std::atomic<int> failures{0};
    options.interval = milliseconds(1);
    options.onReading = [&](const LipSync::Status& status) {
        failures += tests::memory.hasFailed ? 1 : 0;
        // Only what a reading needs: that is the same each time.
        tests::memory.fail(status.isSteered ? next++ : 0);
    };
    LipSync lipSync(options);
    await(lipSync, [&](const LipSync::Status&) { return next > 20; });
    EXPECT_GT(failures, 5);
    awaitSteered(lipSync);
}
