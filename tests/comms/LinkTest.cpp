#include "comms/Link.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "tests/replacements/SystemCalls.h"
#include "tests/support/SocketPair.h"

using tests::SocketPair;
using velta::zub::comms::Link;

namespace {

std::string read(Link& link) {
    char byte;
    std::size_t bytesRead = 7;
    const Link::Result result = link.read(&byte, 1, bytesRead);
    EXPECT_EQ(bytesRead, 7U);
    return result.format();
}

} // namespace

TEST(Link, ChecksArgumentsBeforeItUsesTheSocket) {
    SocketPair pair;
    Link link(pair.takeNear());
    pair.closeFar();
    char buffer[1];
    std::size_t bytesRead = 0;
    for (const Link::Result& result :
         {link.write(nullptr, 5), link.write(buffer, 0), link.read(nullptr, 5, bytesRead),
          link.read(buffer, 0, bytesRead)}) {
        EXPECT_EQ(result.format(), "Invalid Argument(s) (Code 10006)");
    }
}

TEST(Link, ShutsTheSocketDownOnlyOnce) {
    std::signal(SIGPIPE, SIG_IGN);
    SocketPair pair;
    Link link(pair.takeNear());
    pair.send("there is data");
    tests::systemCalls = {};
    link.close();
    link.close();
    EXPECT_EQ(tests::systemCalls.shutdowns, 1);
    EXPECT_EQ(read(link), "Closed (Code 10002)");
    EXPECT_EQ(link.write("x", 1).format(), "Closed (Code 10002)");
}

TEST(Link, ClosingWakesABlockedRead) {
    SocketPair pair;
    Link link(pair.takeNear());
    std::thread closer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        link.close();
    });
    EXPECT_EQ(read(link), "Closed (Code 10002)");
    closer.join();
}

TEST(LinkDeathTest, AbortsIfTheDescriptorIsNotPositive) {
    const std::string line =
        "F/VELTA comms/src/Link.cpp:40: Assertion fdLinkSocket > 0 failed: Invalid file descritpor";
    EXPECT_DEATH(Link(0), line);
    EXPECT_DEATH(Link(-1), line);
}
