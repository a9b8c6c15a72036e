#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <thread>

#include "avsync/LipSync.h"
#include "avsync/Window.h"
#include "tests/tools/Engine.h"

namespace tests {

/// A caller of `LipSync`: it shows pictures while it waits for something.
class LipSyncTest : public EngineTest {
protected:
    using LipSync = velta::zub::avsync::LipSync;
    using milliseconds = std::chrono::milliseconds;
    using Clock = std::chrono::steady_clock;

    static constexpr milliseconds deadline{300};

    LipSyncTest() {
        options.socket = socket;
        options.deadline = deadline;
        options.interval = milliseconds(50);
    }

    /// Shows pictures until the status is as expected.
    template <typename Expected>
    LipSync::Status await(LipSync& lipSync, const Expected& isExpected) {
        using namespace velta::zub::avsync;
        const auto end = Clock::now() + std::chrono::seconds(20);
        LipSync::Status status;
        do {
            const double heldMs = lipSync.pictureDelayMs();
            const std::uint64_t shown = ntpNow();
            lipSync.setPicture(ntpAddMs(shown, -pictureMs - heldMs), shown, heldMs);
            std::this_thread::sleep_for(milliseconds(5));
            status = lipSync.status();
            wasDisconnected = wasDisconnected || !status.isConnected;
        } while (!isExpected(status) && Clock::now() < end);
        EXPECT_TRUE(isExpected(status)) << status.message << ", skew " << status.skewMs;
        return status;
    }

    LipSync::Status awaitMessage(LipSync& lipSync, const std::string& text) {
        return await(lipSync, [&](const LipSync::Status& status) {
            return status.message.find(text) != std::string::npos;
        });
    }

    LipSync::Status awaitSteered(LipSync& lipSync) {
        return await(lipSync, [](const LipSync::Status& status) {
            return status.isSteered && status.message.empty() &&
                   velta::zub::avsync::allowedSkew.contains(status.skewMs);
        });
    }

    LipSync::Options options;
    double pictureMs = 170; // With a sound of 90 ms this needs a margin.
    bool wasDisconnected = false;
};

} // namespace tests
