#include "avsync/LipSync.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "avsync/Window.h"
#include "tests/avsync/ScriptedEngine.h"
#include "tests/replacements/Memory.h"
#include "tests/tools/Engine.h"

using namespace velta::zub::avsync;
using std::chrono::milliseconds;
using testing::IsSubstring;
using Clock = std::chrono::steady_clock;

namespace {

constexpr milliseconds deadline{300};
constexpr milliseconds slack{500};

// A caller: it shows pictures while it waits for something.
class LipSyncTest : public tests::EngineTest {
protected:
    LipSyncTest() {
        options.socket = socket;
        options.deadline = deadline;
        options.interval = milliseconds(50);
    }

    template <typename Expected>
    LipSync::Status await(LipSync& lipSync, const Expected& isExpected) {
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
                   allowedSkew.contains(status.skewMs);
        });
    }

    static milliseconds timeToStop(LipSync& lipSync) {
        const auto start = Clock::now();
        lipSync.stop();
        return std::chrono::duration_cast<milliseconds>(Clock::now() - start);
    }

    LipSync::Options options;
    double pictureMs = 170; // With a sound of 90 ms this needs a margin.
    bool wasDisconnected = false;
};

// An engine that listens, but accepts no connection.
class FullQueue {
public:
    explicit FullQueue(const std::string& path) : listener(path) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        int result = 0;
        while (result == 0) {
            _waiting.push_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0));
            result = connect(_waiting.back(), reinterpret_cast<const sockaddr*>(&address),
                             sizeof(address));
        }
    }
    ~FullQueue() {
        for (const int fd : _waiting) {
            close(fd);
        }
    }

    // Accepts the next client after those that fill the queue.
    int acceptNext() const {
        for (std::size_t i = 1; i < _waiting.size(); ++i) {
            close(listener.accept());
        }
        return listener.accept();
    }

    const tests::Listener listener;

private:
    std::vector<int> _waiting; // The last one is not connected.
};

} // namespace

TEST_F(LipSyncTest, HasAnAnswerToEachStateOfTheEngine) {
    struct Row {
        const char* command;
        const char* message;
        bool staysConnected;
        const char* end;
    };
    const Row rows[] = {
        {"call off", "performing a call (Code 1007)", true, "verbose on\ncall on"},
        {"freeze on", "The timestamps do not change", true, "freeze off"},
        {"fault error 1001 no", "returned an error (Code 1006)", true, "fault none"},
        {"fault missing Result", "(Code 1005): {Serializer", false, "verbose on\nfault none"},
        {"fault close-before", "Closed by distant", false, "fault none"},
        {"fault silence", "(Code 1005): no answer within 300 ms", false, "fault none"},
        {"down 0.3", "Cannot connect to Audio ZUB (Code 1004)", false, "verbose on"},
    };
    const tests::Engine engine(socket);
    engine.write("jitter 20\n");
    LipSync lipSync(options);
    const auto marginMs = awaitSteered(lipSync).marginMs;
    EXPECT_GT(marginMs, 0);
    for (const Row& row : rows) {
        engine.write(std::string(row.command) + '\n');
        wasDisconnected = false;
        auto status = awaitMessage(lipSync, row.message);
        EXPECT_FALSE(status.isSteered) << row.command;
        EXPECT_EQ(status.marginMs, marginMs) << row.command;
        engine.write(std::string(row.end) + '\n');
        if (std::string(row.end).find("verbose") == 0) {
            engine.readUntil("<SetAudioDelay_Request>" + std::to_string(marginMs) + '<');
            engine.write("verbose off\n");
        }
        status = awaitSteered(lipSync);
        EXPECT_EQ(wasDisconnected, !row.staysConnected) << row.command;
        EXPECT_EQ(status.marginMs, marginMs) << row.command;
    }
    EXPECT_EQ(lipSync.status().marginChanges, 1);
}

TEST_F(LipSyncTest, SteersThePicturesWhileTheEngineRefusesMargins) {
    SKIP_WITHOUT_SOCKET_FILES();
    tests::ScriptedEngine engine(socket);
    engine.refusesMargins = true;
    LipSync lipSync(options);
    const auto start = Clock::now();
    awaitMessage(lipSync, "Invalid parameter (Code 1002)");
    EXPECT_LT(lipSync.status().skewMs, -70);
    pictureMs = 0;
    const auto isInside = [](const LipSync::Status& status) {
        return status.isSteered && allowedSkew.contains(status.skewMs);
    };
    const auto status = await(lipSync, isInside);
    EXPECT_GT(status.pictureDelayMs, 40);
    EXPECT_PRED_FORMAT2(IsSubstring, "(Code 1006)", status.message);
    engine.refusesMargins = false;
    pictureMs = 170;
    EXPECT_GT(awaitSteered(lipSync).marginMs, 0);
    EXPECT_GT(Clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(engine.clients, 1);
    // One refused, one repeated, one that was decided on.
    EXPECT_LE(engine.marginRequests, 4);
}

TEST_F(LipSyncTest, NeedsNoCommonClockButFreshPictures) {
    SKIP_WITHOUT_SOCKET_FILES();
    tests::ScriptedEngine engine(socket);
    engine.clockMs = -1500;
    LipSync lipSync(options);
    const auto marginMs = awaitSteered(lipSync).marginMs;
    for (const double clockMs : {-60000, 3600000}) {
        engine.clockMs = clockMs;
        awaitSteered(lipSync);
    }
    const auto readings = lipSync.status().readings;
    const auto start = Clock::now();
    while (lipSync.status().isSteered && Clock::now() - start < std::chrono::seconds(5)) {
        std::this_thread::sleep_for(milliseconds(5));
    }
    const auto status = lipSync.status();
    EXPECT_EQ(status.message, "No picture in the last second");
    EXPECT_GT(status.readings, readings + 10);
    EXPECT_EQ(status.marginMs, marginMs);
    EXPECT_EQ(engine.clients, 1);
}

TEST_F(LipSyncTest, ResetsTheMarginAtTheEndUnlessToldNotTo) {
    const tests::Engine engine(socket);
    engine.write("jitter 20\n");
    for (const bool resets : {false, true}) {
        options.resetsMargin = resets;
        LipSync lipSync(options);
        const auto marginMs = awaitSteered(lipSync).marginMs;
        EXPECT_LT(timeToStop(lipSync), deadline);
        EXPECT_EQ(lipSync.status().marginMs, resets ? 0 : marginMs);
        engine.write("status\n");
        engine.readUntil("margin " + std::to_string(resets ? 0 : marginMs) + " ms\n");
    }
}

TEST_F(LipSyncTest, StopsInTimeWhateverTheEngineDoes) {
    const auto expectStop = [&](const char* name, const char* message) {
        LipSync lipSync(options);
        message == nullptr ? awaitSteered(lipSync) : awaitMessage(lipSync, message);
        const milliseconds time = timeToStop(lipSync);
        EXPECT_LT(time, deadline + slack) << name;
        std::printf("stop with %s: %d ms\n", name, static_cast<int>(time.count()));
    };
    expectStop("no engine", "(Code 1004)");
    {
        const tests::Engine engine(socket);
        expectStop("a good engine", nullptr);
        engine.write("fault silence\n");
        expectStop("a silent engine", "no answer");
    }
    unlink(socket.c_str());
    {
        const tests::Listener listener(socket);
        expectStop("an engine that does not accept", "no answer");
    }
    unlink(socket.c_str());
    const FullQueue queue(socket);
    expectStop("a full queue", "no connection within 300 ms");
}

TEST_F(LipSyncTest, LeavesAThreadThatCannotConnectToItself) {
    SKIP_WITHOUT_SOCKET_FILES();
    const FullQueue queue(socket);
    auto calls = std::make_unique<int>(0);
    options.onReading = [&calls](const LipSync::Status&) { ++*calls; };
    auto lipSync = std::make_unique<LipSync>(options);
    awaitMessage(*lipSync, "no connection");
    lipSync = nullptr;
    // The thread must not touch this any more, nor send anything.
    calls = nullptr;
    const int client = queue.acceptNext();
    char byte;
    EXPECT_EQ(read(client, &byte, 1), 0);
    close(client);
}

TEST_F(LipSyncTest, IsNotDisturbedByAnotherOne) {
    const std::string other = socket + "2";
    const tests::Engine good(socket);
    const tests::Engine bad(other);
    good.write("jitter 20\n");
    bad.write("jitter 60\n");
    LipSync::Options otherOptions = options;
    otherOptions.socket = other;
    options.interval = otherOptions.interval = milliseconds(1);
    LipSync lipSync(options);
    LipSync otherLipSync(otherOptions);
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
    for (const bool destroys : {false, true}) {
        std::atomic<bool> isReady{false};
        std::atomic<int> calls{0};
        std::unique_ptr<LipSync> lipSync;
        options.onReading = [&](const LipSync::Status&) {
            while (!isReady) {
                std::this_thread::yield();
            }
            lipSync->stop();
            if (destroys) {
                lipSync = nullptr;
            }
            ++calls;
        };
        lipSync = std::make_unique<LipSync>(options);
        isReady = true;
        while (calls == 0) {
            std::this_thread::yield();
        }
        lipSync = nullptr;
        EXPECT_EQ(calls, 1);
    }
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
