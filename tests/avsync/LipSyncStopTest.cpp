#include <unistd.h>

#include <memory>

#include "tests/avsync/LipSyncTest.h"

using tests::LipSyncTest;

TEST_F(LipSyncTest, ResetsTheMarginAtTheEndUnlessToldNotTo) {
    tests::ScriptedEngine engine(options);
    for (const bool resets : {false, true}) {
        options.resetsMargin = resets;
        LipSync lipSync(options);
        const auto marginMs = awaitSteered(lipSync).marginMs;
        EXPECT_GT(marginMs, 0);
        EXPECT_LT(timeToStop(lipSync), deadline);
        EXPECT_EQ(lipSync.status().marginMs, resets ? 0 : marginMs);
        EXPECT_EQ(engine.marginMs, resets ? 0 : marginMs);
    }
    // The engine may have applied a margin that it did not confirm in time.
    LipSync lipSync(options);
    showsPictures = false;
    await(lipSync, [](const LipSync::Status& status) { return status.readings > 0; });
    showsPictures = true;
    engine.margins = tests::ScriptedEngine::Unanswered;
    awaitMessage(lipSync, "no answer");
    EXPECT_LT(timeToStop(lipSync), deadline + slack);
    EXPECT_EQ(engine.marginMs, 0);
}

TEST_F(LipSyncTest, StopsInTimeWhateverTheEngineDoes) {
    const auto expectStop = [&](const char* message) {
        LipSync lipSync(options);
        awaitMessage(lipSync, message);
        // By then the next attempt has begun.
        std::this_thread::sleep_for(milliseconds(150));
        EXPECT_LT(timeToStop(lipSync), deadline + slack) << message;
    };
    expectStop("(Code 1004)");
    const tests::Listener listener(socket);
    expectStop("no answer within 300 ms");
}

TEST_F(LipSyncTest, LeavesAThreadThatCannotConnectToItself) {
    const tests::Listener listener(socket);
    constexpr int queueLength = 5; // Linux lets one more client wait than a listener asks for.
    std::vector<std::unique_ptr<velta::zub::comms::Link>> waiting;
    while (waiting.size() < queueLength) {
        waiting.push_back(connectTo(socket));
    }
    auto calls = std::make_unique<int>(0);
    options.onReading = [&calls](const LipSync::Status&) { ++*calls; };
    auto lipSync = std::make_unique<LipSync>(options);
    awaitMessage(*lipSync, "no connection within 300 ms");
    EXPECT_LT(timeToStop(*lipSync), deadline + slack);
    lipSync = nullptr;
    // The thread must not touch this any more, nor send anything.
    calls = nullptr;
    for (int i = 0; i < queueLength; ++i) {
        close(listener.accept());
    }
    const int client = listener.accept();
    char byte;
    EXPECT_EQ(::read(client, &byte, 1), 0);
    close(client);
}

TEST_F(LipSyncTest, IsNotDisturbedByAnotherOne) {
    const tests::Engine good(socket);
    const tests::Engine bad(socket + "2");
    good.write("jitter 20\n");
    bad.write("jitter 60\n");
    options.interval = milliseconds(1);
    LipSync lipSync(options);
    options.socket += "2";
    LipSync otherLipSync(options);
    const auto hasMany = [](const LipSync::Status& status) { return status.readings >= 100; };
    EXPECT_EQ(await(lipSync, hasMany).depthMs, 20);
    EXPECT_EQ(await(otherLipSync, hasMany).depthMs, 60);
    bad.write("fault silence\n");
    awaitMessage(otherLipSync, "no answer");
    awaitSteered(lipSync);
    // While the other one waits for an answer.
    EXPECT_LT(timeToStop(lipSync), deadline + slack);
    EXPECT_LT(timeToStop(otherLipSync), deadline + slack);
}

TEST_F(LipSyncTest, CanBeStoppedAndDestroyedInOnReading) {
    const tests::Engine engine(socket);
    std::atomic<bool> isReady{false};
    std::atomic<bool> isDone{false};
    std::unique_ptr<LipSync> lipSync;
    options.onReading = [&](const LipSync::Status&) {
        while (!isReady) {
            std::this_thread::yield();
        }
        lipSync->stop();
        lipSync = nullptr;
        EXPECT_FALSE(isDone.exchange(true));
    };
    lipSync = std::make_unique<LipSync>(options);
    isReady = true;
    while (!isDone) {
        std::this_thread::yield();
    }
}
