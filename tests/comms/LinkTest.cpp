#include "comms/Link.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <csignal>
#include <cstring>
#include <memory>
#include <thread>

#include "tests/replacements/SystemCalls.h"
#include "tests/support/SocketPair.h"

using tests::Call;
using tests::SocketPair;
using tests::SystemCalls;
using velta::zub::comms::Link;

namespace {

std::string read(Link& link) {
    char buffer[64];
    std::size_t bytesRead = 0;
    const Link::Result result = link.read(buffer, sizeof(buffer), bytesRead);
    return result.isSuccess() ? std::string(buffer, bytesRead) : result.format();
}

std::string write(Link& link, const std::string& bytes) {
    return link.write(bytes.data(), bytes.size()).format();
}

} // namespace

TEST(Link, RefusesNullAndNothingWithoutTouchingTheSocket) {
    SocketPair pair;
    Link link(pair.takeNear());
    char buffer[1];
    std::size_t bytesRead = 7;
    const std::string refusal = "Invalid Argument(s) (Code 10006)";
    EXPECT_EQ(link.write(nullptr, 5).format(), refusal);
    EXPECT_EQ(link.write(buffer, 0).format(), refusal);
    EXPECT_EQ(link.read(nullptr, 5, bytesRead).format(), refusal);
    EXPECT_EQ(link.read(buffer, 0, bytesRead).format(), refusal);
    EXPECT_EQ(bytesRead, 7U);
    pair.closeFar();
    EXPECT_EQ(link.read(buffer, 1, bytesRead).format(), "Closed by distant (Code 10003)");
    EXPECT_EQ(bytesRead, 7U);
}

TEST(Link, TellsWhoHasClosed) {
    std::signal(SIGPIPE, SIG_IGN);
    SocketPair pair;
    Link link(pair.takeNear());
    pair.send("abc");
    EXPECT_EQ(read(link), "abc");
    pair.send("never read");
    pair.closeFar();
    EXPECT_EQ(read(link), "never read");
    EXPECT_EQ(read(link), "Closed by distant (Code 10003)");
    EXPECT_EQ(write(link, "x"), "Closed by distant (Code 10003)");

    SocketPair other;
    Link closed(other.takeNear());
    other.send("there is data");
    SystemCalls::reset();
    closed.close();
    closed.close();
    EXPECT_EQ(SystemCalls::count(Call::Shutdown), 1);
    EXPECT_EQ(read(closed), "Closed (Code 10002)");
    EXPECT_EQ(write(closed, "x"), "Closed (Code 10002)");
}

TEST(Link, AResetIsAClosureByThePeer) {
    SocketPair pair;
    Link link(pair.takeNear());
    // A peer that goes with unread bytes resets the connection.
    EXPECT_EQ(write(link, "unread"), "Success");
    pair.closeFar();
    EXPECT_EQ(read(link), "Closed by distant (Code 10003)");
}

TEST(Link, ReportsOtherFailuresWithTheirErrno) {
    int pipeFds[2];
    ASSERT_EQ(pipe(pipeFds), 0);
    const std::string failure = std::string("I/O error (Code 10004): {") + std::strerror(EBADF) +
                                " (Code " + std::to_string(EBADF) + ")}";
    Link readEnd(pipeFds[0]);
    Link writeEnd(pipeFds[1]);
    EXPECT_EQ(write(readEnd, "x"), failure);
    EXPECT_EQ(read(writeEnd), failure);
}

TEST(Link, WritesEverythingThroughPartialWritesAndRefusals) {
    SocketPair pair;
    const int fd = pair.takeNear();
    ASSERT_EQ(fcntl(fd, F_SETFL, O_NONBLOCK), 0);
    Link link(fd);
    std::string sent(1000000, 'x');
    sent.back() = 'y';
    std::string got;
    std::thread peer([&] { got = pair.receiveBytes(sent.size()); });
    EXPECT_EQ(write(link, sent), "Success");
    peer.join();
    EXPECT_EQ(got, sent);
}

TEST(Link, ReadsOnAfterASignal) {
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(sigaction(SIGUSR1, &action, nullptr), 0);
    SocketPair pair;
    Link link(pair.takeNear());
    const pthread_t reader = pthread_self();
    std::thread peer([&] {
        for (int i = 0; i < 5; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            pthread_kill(reader, SIGUSR1);
        }
        pair.send("abc");
    });
    EXPECT_EQ(read(link), "abc");
    peer.join();
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

TEST(LinkDeathTest, RefusesDescriptorsThatAreNotPositive) {
    const std::string line =
        "F/VELTA comms/src/Link.cpp:40: Assertion fdLinkSocket > 0 failed: Invalid file descritpor";
    EXPECT_DEATH(Link(0), line);
    EXPECT_DEATH(Link(-1), line);
}
