// What threads may do at the same time. ThreadSanitizer watches.

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "cmdfrmwrk/Peer.h"
#include "comms/Client.h"
#include "lipsync/SerializationTraits.h"
#include "lipsyncapi/ApiLog.h"
#include "lipsyncapi/Logger.h"
#include "lipsyncapi/Service.h"
#include "tests/replacements/LogCapture.h"
#include "tests/support/EngineDouble.h"
#include "tests/support/Frames.h"
#include "utilities/result/ErrnoTrait.h"

using velta::zub::common::LipSyncNtpTimestamps;
using velta::zub::lipsyncapi::Service;

namespace {

constexpr int threadCount = 8;

// All threads set out together.
void inThreads(const std::function<void(int)>& body) {
    std::atomic<int> waiting{threadCount};
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            --waiting;
            while (waiting > 0) {
                std::this_thread::yield();
            }
            body(i);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

template <typename Result>
std::string firstSuccess() {
    return Result::success().format();
}

} // namespace

TEST(Threads, MayUseSeveralServicesUnderOneLock) {
    constexpr int rounds = 20;
    const tests::LogCapture log;
    std::mutex lock;
    inThreads([&](int thread) {
        const std::string capture = std::to_string(thread);
        tests::EngineDouble engine(
            std::vector<std::string>(rounds, tests::timestampsFrame(capture, "2", "3", "4")));
        Service service;
        EXPECT_TRUE(service.connect(engine.path()).isSuccess());
        for (int i = 0; i < rounds; ++i) {
            const std::lock_guard<std::mutex> hold(lock);
            LipSyncNtpTimestamps timestamps;
            EXPECT_EQ(service.getAudioTimestamps(timestamps).format(), "Success");
            EXPECT_EQ(std::to_string(timestamps.audioCaptureTimestamp), capture);
        }
    });
    EXPECT_EQ(log.records().size(), threadCount * (rounds + 2U));
}

TEST(Threads, MayRaceForTheFirstSuccessOfEachDomain) {
    namespace zub = velta::zub;
    namespace result = velta::utilities::result;
    inThreads([](int) {
        EXPECT_EQ(firstSuccess<Service::Result>(), "Success");
        EXPECT_EQ(firstSuccess<zub::cmdfrmwrk::Command::Result>(), "Success");
        EXPECT_EQ(firstSuccess<zub::cmdfrmwrk::Peer::Result>(), "Success");
        EXPECT_EQ(firstSuccess<velta::utilities::xmlserializer::Result>(), "Success");
        EXPECT_EQ(firstSuccess<zub::comms::Link::Result>(), "Success");
        EXPECT_EQ(firstSuccess<zub::comms::Client::Result>(), "Success");
        EXPECT_EQ(firstSuccess<zub::comms::TextProtocol::Result>(), "Success");
        EXPECT_EQ(firstSuccess<result::Result<result::ErrnoTrait>>(), "Success");
    });
}

TEST(Threads, MayLogAtTheSameTime) {
    constexpr int lines = 200;
    const tests::LogCapture log;
    inThreads([](int thread) {
        for (int i = 0; i < lines; ++i) {
            velta::zub::log::ApiLog<velta::zub::lipsyncapi::Logger>()
                .addInput("thread", static_cast<unsigned long>(thread))
                .setResult(Service::Result(Service::ResultCode::BadState))
                .event("Client is disconnected");
        }
    });
    ASSERT_EQ(log.records().size(), static_cast<std::size_t>(threadCount * lines));
    for (const std::string& record : log.records()) {
        EXPECT_EQ(record.substr(0, 66),
                  "4/AZUBLIPSYNCAPI Client is disconnected with input params: thread=");
        EXPECT_EQ(record.substr(67), "  with result: Bad state (Code 1003)");
    }
}

TEST(Threads, MaySerializeAtTheSameTime) {
    using namespace velta::zub::lipsync;
    inThreads([](int thread) {
        for (int i = 0; i < 50; ++i) {
            std::string text;
            GetAudioTs::Answer answer;
            EXPECT_TRUE(Serializer().serialize(SetAudioDelay::Request{20}, text).isSuccess());
            EXPECT_TRUE(
                Serializer()
                    .deserialize(tests::timestampsFrame(std::to_string(thread), "2", "3", "4"),
                                 answer)
                    .isSuccess());
            EXPECT_EQ(answer.timestamps.audioCaptureTimestamp, static_cast<unsigned long>(thread));
        }
    });
}
