#include <gtest/gtest.h>

#include "tests/replacements/LogCapture.h"
#include "utilities/log/Assertion.h"
#include "utilities/log/GenericLog.h"

using tests::LogCapture;
using velta::utilities::StandardLog;
using velta::utilities::details::Level;

TEST(Log, WritesTheTextAsItIsToBothOutputs) {
    LogCapture capture;
    { StandardLog::Stream<Level::Info>("TAG") << "100%s %n " << 1234567; }
    { StandardLog::Stream<Level::Fatal>("OTHER") << "x"; }
    { StandardLog::Stream<Level::Info> silent("TAG"); }
    EXPECT_EQ(capture.records(), (std::vector<std::string>{"4/TAG 100%s %n 1234567", "7/OTHER x"}));
    EXPECT_EQ(capture.standardError(), "I/TAG 100%s %n 1234567\nF/OTHER x\n");
}

TEST(LogDeathTest, AnAssertionLogsToThePlatformThenToStandardErrorThenAborts) {
    const int answer = 41;
    EXPECT_EXIT(VELTA_ASSERT("folder/File.cpp", 12, answer == 42, "It is not"),
                testing::KilledBySignal(SIGABRT),
                "^platform 7/VELTA folder/File.cpp:12: Assertion answer == 42 failed: It is not\n"
                "F/VELTA folder/File.cpp:12: Assertion answer == 42 failed: It is not\n$");
}
