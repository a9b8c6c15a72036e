#include "log/ThroughputLimit.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/replacements/LogCapture.h"
#include "tests/replacements/SystemCalls.h"
#include "utilities/log/GenericLog.h"

using tests::LogCapture;
using tests::SystemCalls;
using velta::utilities::StandardLog;
using velta::utilities::details::Level;
using velta::zub::log::throughput_limit;
using velta::zub::log::ThroughputLimit;

namespace {

struct Setting {
    const char* text;
    std::uint32_t limit;
    std::uint32_t pauseUs;
};

void logRecords(int count) {
    for (int i = 0; i < count; ++i) {
        StandardLog::Stream<Level::Info>("TAG") << i;
    }
}

// The records, counted from 1, that are preceded by a pause.
std::vector<int> delayedRecords(ThroughputLimit limit, int count) {
    std::vector<int> delayed;
    throughput_limit = limit;
    const LogCapture capture;
    for (int record = 1; record <= count; ++record) {
        SystemCalls::reset();
        logRecords(1);
        if (!SystemCalls::pauses.empty()) {
            EXPECT_EQ(SystemCalls::pauses, std::vector<useconds_t>{limit.pauseUs});
            delayed.push_back(record);
        }
    }
    throughput_limit = {0, 0, 0};
    return delayed;
}

} // namespace

TEST(ThroughputLimit, ReadsItsSetting) {
    const Setting settings[] = {
        {nullptr, 0, 0},       {"", 0, 0},      {"abc", 0, 0},       {"10", 0, 0},
        {"10/", 0, 0},         {"10 /5", 0, 0}, {"10/5", 10, 5000},  {"0/5", 0, 5000},
        {"3/1", 3, 1000},      {"10/0", 10, 0}, {" 2/ 3x", 2, 3000}, {"-1/1", 4294967295U, 1000},
        {"1/4294968", 1, 704},
    };
    for (const Setting& setting : settings) {
        const ThroughputLimit limit = ThroughputLimit::fromSetting(setting.text);
        EXPECT_EQ(limit.counter, 0U);
        EXPECT_EQ(limit.limit, setting.limit) << setting.text;
        EXPECT_EQ(limit.pauseUs, setting.pauseUs) << setting.text;
    }
}

TEST(ThroughputLimit, PausesBeforeEveryNthRecord) {
    EXPECT_EQ(delayedRecords({0, 3, 1000}, 9), (std::vector<int>{3, 6, 9}));
    EXPECT_EQ(delayedRecords({0, 1, 1000}, 3), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(delayedRecords({0, 0, 5000}, 3), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(delayedRecords({0, 4294967295U, 1000}, 20), std::vector<int>{});
    EXPECT_EQ(delayedRecords({0, 3, 0}, 9), std::vector<int>{});
}

TEST(ThroughputLimitDeathTest, ReadsTheEnvironmentWhenTheProcessStarts) {
    // The child of this style is started anew, and so reads the environment again.
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    setenv("LIBLOG_THROUGHPUT_LIMIT", "2/7", 1);
    EXPECT_EXIT(
        {
            setenv("LIBLOG_THROUGHPUT_LIMIT", "1/1", 1);
            logRecords(5);
            const std::vector<useconds_t> expected(2, 7000);
            _exit(SystemCalls::pauses == expected ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    unsetenv("LIBLOG_THROUGHPUT_LIMIT");
}
