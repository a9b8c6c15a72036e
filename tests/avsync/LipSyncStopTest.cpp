#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <vector>

#include "tests/avsync/LipSyncTest.h"

using std::chrono::milliseconds;
using tests::LipSyncTest;
using velta::zub::avsync::LipSync;

namespace {

constexpr milliseconds slack{500};

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

milliseconds timeToStop(LipSync& lipSync) {
    const auto start = std::chrono::steady_clock::now();
    lipSync.stop();
    return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
}

} // namespace

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
        // By then the next attempt has begun.
        std::this_thread::sleep_for(milliseconds(150));
        EXPECT_LT(timeToStop(lipSync), deadline + slack) << name;
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
