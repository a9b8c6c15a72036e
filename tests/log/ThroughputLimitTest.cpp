#include "log/ThroughputLimit.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "log/LogWriter.h"
#include "tests/replacements/LogCapture.h"
#include "tests/replacements/SystemCalls.h"
#include "utilities/log/GenericLog.h"

using velta::zub::log::reachesLogDaemon;
using velta::zub::log::throughput_limit;
using velta::zub::log::ThroughputLimit;

namespace {

void logRecord() {
    velta::utilities::StandardLog::Stream<velta::utilities::details::Level::Info>("TAG") << "text";
}

// Returns which of nine records wait.
std::string delayed(ThroughputLimit limit) {
    std::string records;
    throughput_limit = limit;
    for (char record = '1'; record <= '9'; ++record) {
        tests::pauses.clear();
        tests::logOf(logRecord);
        if (!tests::pauses.empty()) {
            EXPECT_EQ(tests::pauses, std::vector<useconds_t>{limit.pauseUs});
            records += record;
        }
    }
    throughput_limit = {0, 0, 0};
    return records;
}

} // namespace

TEST(ThroughputLimit, OnAndroidCountsOnlyRecordsThatReachTheLogDaemon) {
    constexpr uid_t app = 10123;
    EXPECT_TRUE(reachesLogDaemon(app, true));
    EXPECT_FALSE(reachesLogDaemon(app, false));
    constexpr uid_t logDaemon = 1036;
    EXPECT_FALSE(reachesLogDaemon(logDaemon, true));
}

TEST(ThroughputLimitDeathTest, DelaysEveryNthRecord) {
#ifdef __ANDROID__
    if (!reachesLogDaemon(getuid(), access("/dev/socket/logdw", W_OK) == 0)) {
        GTEST_SKIP() << "no record of this user reaches the log daemon";
    }
#endif
    // In this style the child starts the program again, so it reads the environment again.
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    setenv("LIBLOG_THROUGHPUT_LIMIT", "2/7", 1);
    EXPECT_EXIT(
        {
            setenv("LIBLOG_THROUGHPUT_LIMIT", "1/1", 1);
            for (int i = 0; i < 5; ++i) {
                logRecord();
            }
            _exit(tests::pauses == std::vector<useconds_t>(2, 7000) ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    unsetenv("LIBLOG_THROUGHPUT_LIMIT");

    EXPECT_EQ(delayed({0, 3, 1000}), "369");
    EXPECT_EQ(delayed({0, 0, 5000}), "123456789");
    EXPECT_EQ(delayed({0, 4294967295U, 1000}), "");
    EXPECT_EQ(delayed({0, 3, 0}), "");
}
