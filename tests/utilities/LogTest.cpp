#include <gtest/gtest.h>

#include "tests/replacements/LogCapture.h"
#include "utilities/log/Assertion.h"
#include "utilities/log/GenericLog.h"

using velta::utilities::StandardLog;
using velta::utilities::details::Level;

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
