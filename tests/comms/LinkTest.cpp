#include "comms/Link.h"

#include <gtest/gtest.h>

#include <csignal>

#include "tests/replacements/SystemCalls.h"
#include "tests/support/SocketPair.h"

using velta::zub::comms::Link;

TEST(Link, ChecksArgumentsAndShutsTheSocketDownOnlyOnce) {
    std::signal(SIGPIPE, SIG_IGN);
    const tests::SocketPair pair;
    Link link(pair.takeNear());
    pair.send("there is data");
    char byte = 'x';
    std::size_t bytesRead = 7;
    const auto expectBoth = [&](char* buffer, std::size_t size, const std::string& result) {
        EXPECT_EQ(link.write(buffer, size).format(), result);
        EXPECT_EQ(link.read(buffer, size, bytesRead).format(), result);
        EXPECT_EQ(bytesRead, 7U);
    };
    expectBoth(&byte, 0, "Invalid Argument(s) (Code 10006)");
    expectBoth(nullptr, 5, "Invalid Argument(s) (Code 10006)");
    tests::systemCalls = {};
    link.close();
    link.close();
    EXPECT_EQ(tests::systemCalls.shutdowns, 1);
    expectBoth(&byte, 1, "Closed (Code 10002)");
}

TEST(LinkDeathTest, AbortsIfTheDescriptorIsNotPositive) {
    EXPECT_DEATH(Link(0),
                 "F/VELTA comms/src/Link.cpp:40: Assertion fdLinkSocket > 0 failed: "
                 "Invalid file descritpor");
}
