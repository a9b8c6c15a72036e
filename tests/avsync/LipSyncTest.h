#pragma once

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "avsync/LipSync.h"
#include "avsync/Window.h"
#include "tests/support/EngineDouble.h"
#include "tests/support/Frames.h"
#include "tests/tools/Engine.h"

namespace tests {

/// An engine for what azubsim cannot do. Its sound has a latency of 90 ms and the margin.
class ScriptedEngine {
public:
    enum Margins { Accepted, Refused, Unanswered };

    explicit ScriptedEngine(velta::zub::avsync::LipSyncOptions& options) {
        options.socket = _engine.path();
    }

    std::atomic<Margins> margins{Accepted};
    std::atomic<double> clockMs{0}; ///< How far its clock is ahead.
    std::atomic<double> marginMs{0};
    std::atomic<int> marginRequests{0};

private:
    std::string answer(const std::string& request) {
        using namespace velta::zub::avsync;
        const std::string name = "<SetAudioDelay_Request>";
        const auto margin = request.find(name);
        if (margin == std::string::npos) {
            const auto at = [&](double ms) {
                return std::to_string(ntpAddMs(ntpNow(), clockMs + ms));
            };
            return timestampsFrame(at(-60), at(30 + marginMs), at(0), "20");
        }
        ++marginRequests;
        if (margins == Refused) {
            return delayFrame("1002");
        }
        marginMs = std::stod(request.substr(margin + name.size()));
        return margins == Accepted ? delayFrame("1000") : "no end";
    }

    EngineDouble _engine{[this](const std::string& request) { return answer(request); },
                         EngineDouble::ForEver};
};

/// A caller of `LipSync`: it shows pictures while it waits for something.
class LipSyncTest : public EngineTest {
protected:
    using LipSync = velta::zub::avsync::LipSync;
    using milliseconds = std::chrono::milliseconds;
    using Clock = std::chrono::steady_clock;

    static constexpr milliseconds deadline{300};
    static constexpr milliseconds slack{500};

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
            if (showsPictures) {
                lipSync.setPicture(ntpAddMs(shown, -pictureMs - heldMs), shown, heldMs);
            }
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

    static milliseconds timeToStop(LipSync& lipSync) {
        const auto start = Clock::now();
        lipSync.stop();
        return std::chrono::duration_cast<milliseconds>(Clock::now() - start);
    }

    LipSync::Options options;
    double pictureMs = 170; // With a sound of 90 ms this needs a margin.
    bool showsPictures = true;
    bool wasDisconnected = false;
};

} // namespace tests
