#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include "lipsyncapi/Service.h"
#include "tests/replacements/LogCapture.h"
#include "tests/support/EngineDouble.h"
#include "tests/support/Frames.h"

// For ThreadSanitizer. All threads start together, so that they race to create each domain's first
// success.
TEST(Threads, MayEachUseAServiceIfOneLockProtectsExchanges) {
    SKIP_WITHOUT_SOCKET_FILES();
    constexpr int threadCount = 8;
    constexpr int rounds = 20;
    std::atomic<int> waiting{threadCount};
    std::mutex exchanges;
    const auto useService = [&](const std::string& number) {
        tests::EngineDouble engine({tests::timestampsFrame(number, "2", "3", "4")},
                                   tests::EngineDouble::ForEver);
        for (--waiting; waiting > 0;) {
            std::this_thread::yield();
        }
        velta::zub::lipsyncapi::Service service;
        EXPECT_EQ(service.connect(engine.path()).format(), "Success");
        for (int i = 0; i < rounds; ++i) {
            EXPECT_TRUE(service.setAudioDelayMargin(150).isFailure());
            const std::lock_guard<std::mutex> hold(exchanges);
            velta::zub::common::LipSyncNtpTimestamps timestamps;
            EXPECT_EQ(service.getAudioTimestamps(timestamps).format(), "Success");
            EXPECT_EQ(std::to_string(timestamps.audioCaptureTimestamp), number);
        }
    };
    const std::string log = tests::logOf([&] {
        std::vector<std::future<void>> threads;
        threads.reserve(threadCount);
        for (int i = 0; i < threadCount; ++i) {
            threads.push_back(std::async(std::launch::async, useService, std::to_string(i)));
        }
    });
    // Each call writes one line to each of two outputs.
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 2 * threadCount * (2 * rounds + 2));
}
