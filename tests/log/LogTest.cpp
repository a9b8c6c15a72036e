#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "log/LogWriter.h"
#include "log/ThroughputLimit.h"
#include "tests/replacements/LogCapture.h"
#include "tests/replacements/SystemCalls.h"
#include "utilities/log/Assertion.h"
#include "utilities/log/GenericLog.h"

using velta::utilities::StandardLog;
using velta::utilities::details::Level;
using namespace velta::zub::log;

namespace {

using Pauses = std::vector<useconds_t>;

Pauses pausesOf(int records, const ThroughputLimit& limit) {
    throughput_limit = limit;
    tests::pauses.clear();
    for (; records > 0; --records) {
        StandardLog::Stream<Level::Info>("TAG") << "text";
    }
    throughput_limit = {0, 0, 0};
    return tests::pauses;
}

} // namespace

TEST(Log, WritesTextUnchangedToThePlatformThenToStandardError) {
    // Too long for the buffer of the line that is written at once.
    const std::string longText(2000, 'x');
    const std::string log = tests::logOf([&] {
        { StandardLog::Stream<Level::Info>("TAG") << "100%s %n " << -7 << ' ' << 5UL; }
        { StandardLog::Stream<Level::Fatal>("OTHER") << longText; }
        { StandardLog::Stream<Level::Info> silent("TAG"); }
    });
    EXPECT_EQ(log, "platform 4/TAG 100%s %n -7 5\nI/TAG 100%s %n -7 5\nplatform 7/OTHER " +
                       longText + "\nF/OTHER " + longText + '\n');
}

TEST(LogDeathTest, AnAssertionLogsAndAborts) {
    const int answer = 41;
    EXPECT_EXIT(VELTA_ASSERT("folder/File.cpp", 12, answer == 42, "It is not"),
                testing::KilledBySignal(SIGABRT),
                "^platform 7/VELTA folder/File.cpp:12: Assertion answer == 42 failed: It is not\n"
                "F/VELTA folder/File.cpp:12: Assertion answer == 42 failed: It is not\n$");
}

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
            _exit(pausesOf(5, throughput_limit) == Pauses(2, 7000) ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    unsetenv("LIBLOG_THROUGHPUT_LIMIT");

    EXPECT_EQ(pausesOf(2, {0, 3, 1000}), Pauses());
    EXPECT_EQ(pausesOf(9, {0, 3, 1000}), Pauses(3, 1000));
    EXPECT_EQ(pausesOf(9, {0, 0, 5000}), Pauses(9, 5000));
    EXPECT_EQ(pausesOf(9, {0, 4294967295U, 1000}), Pauses());
    EXPECT_EQ(pausesOf(9, {0, 3, 0}), Pauses());
}
