#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <fstream>
#include <memory>

#include "comms/Client.h"
#include "lipsyncapi/Service.h"
#include "tests/support/Listener.h"
#include "tests/support/Process.h"
#include "tests/support/Silence.h"
#include "tests/support/TemporaryDirectory.h"

using tests::Process;
using velta::zub::common::LipSyncNtpTimestamps;
using velta::zub::comms::Client;
using velta::zub::comms::Link;
using velta::zub::lipsyncapi::Service;

namespace {

constexpr double unitsPerMs = 4294967.296;

class Azubsim : public testing::Test {
protected:
    Process start(std::vector<std::string> options = {}) {
        options.insert(options.begin(), {AZUBSIM, "--socket", socket});
        return Process(options);
    }

    static void expectListening(Process& process) { process.readUntil("listening at"); }

    bool socketExists() const {
        struct stat status {};
        return lstat(socket.c_str(), &status) == 0;
    }

    // From capture to rendering, less what the jitter buffer adds; ms.
    static double fixedLateness(const Service& service) {
        LipSyncNtpTimestamps t;
        EXPECT_EQ(service.getAudioTimestamps(t).format(), "Success");
        EXPECT_LT(t.audioCaptureTimestamp, t.audioReceivingTimestamp);
        EXPECT_LT(t.audioReceivingTimestamp, t.audioRenderingTimestamp);
        EXPECT_GE(t.jbmCurrentDepth, 20UL);
        EXPECT_LE(t.jbmCurrentDepth, 120UL);
        const auto ntpSeconds = static_cast<unsigned long>(time(nullptr)) + 2208988800UL;
        EXPECT_NEAR(static_cast<double>(t.audioReceivingTimestamp >> 32),
                    static_cast<double>(ntpSeconds), 2.0);
        return static_cast<double>(t.audioRenderingTimestamp - t.audioCaptureTimestamp) /
                   unitsPerMs -
               static_cast<double>(t.jbmCurrentDepth);
    }

    tests::Silence silence;
    tests::TemporaryDirectory directory;
    std::string socket = directory.path() + "/engine";
};

} // namespace

TEST_F(Azubsim, AMarginMovesRenderingByExactlySoMuchForEveryClient) {
    Process process = start();
    expectListening(process);
    Service first;
    Service second;
    ASSERT_EQ(first.connect(socket).format(), "Success");
    ASSERT_EQ(second.connect(socket).format(), "Success");
    const double before = fixedLateness(first);
    EXPECT_EQ(second.setAudioDelayMargin(60).format(), "Success");
    EXPECT_NEAR(fixedLateness(first) - before, 60, 0.001);
    EXPECT_NEAR(fixedLateness(second) - before, 60, 0.001);
}

TEST_F(Azubsim, WithoutACallEveryRequestFails) {
    Process process = start({"--no-call"});
    expectListening(process);
    Service service;
    LipSyncNtpTimestamps timestamps;
    service.connect(socket);
    const std::string noCall =
        "The AZUB is not performing a call (Code 1007): {Bad state (Code 1003): no call}";
    EXPECT_EQ(service.getAudioTimestamps(timestamps).format(), noCall);
    EXPECT_EQ(service.setAudioDelayMargin(40).format(), noCall);
}

TEST_F(Azubsim, EndsCleanlyOnSignals) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        Process process = start();
        expectListening(process);
        EXPECT_TRUE(socketExists());
        Service service;
        service.connect(socket);
        process.signal(number);
        EXPECT_EQ(process.wait(), 0);
        EXPECT_FALSE(socketExists());
        LipSyncNtpTimestamps timestamps;
        std::signal(SIGPIPE, SIG_IGN);
        EXPECT_EQ(service.getAudioTimestamps(timestamps).code, Service::ResultCode::TransportError);
    }
}

TEST_F(Azubsim, ReplacesADeadSocketAndNothingElse) {
    { const tests::Listener dead(socket); }
    Process live = start();
    expectListening(live);

    Process second = start();
    EXPECT_EQ(second.readUntil("\n"),
              "azubsim: cannot listen at " + socket + ": an engine listens there already\n");
    EXPECT_EQ(second.wait(), 1);
    Service service;
    EXPECT_EQ(service.connect(socket).format(), "Success");
    live.signal(SIGTERM);
    live.wait();

    std::ofstream(socket) << "precious";
    Process third = start();
    EXPECT_EQ(third.readUntil("\n"),
              "azubsim: cannot listen at " + socket + ": it exists and is no socket\n");
    EXPECT_EQ(third.wait(), 1);
    EXPECT_TRUE(socketExists());
}

TEST_F(Azubsim, RefusesBadOptions) {
    const struct {
        std::vector<std::string> options;
        int status;
        std::string error;
    } cases[] = {
        {{"--socket", socket, "--nonsense"}, 2, "--nonsense"},
        {{"--socket", socket, "more"}, 2, "more"},
        {{"--socket"}, 2, "--socket"},
        {{"--sokcet", socket}, 2, "--sokcet"},
        {{}, 2, "--socket"},
        {{"--socket", std::string(200, 'x')}, 1, "1 to 107 characters"},
        {{"--socket", directory.path() + "/none/engine"}, 1, "No such file or directory"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> command = c.options;
        command.insert(command.begin(), AZUBSIM);
        Process process(command);
        EXPECT_NE(process.readAll().find(c.error), std::string::npos) << c.error;
        EXPECT_EQ(process.wait(), c.status);
        EXPECT_FALSE(socketExists());
    }
}

TEST_F(Azubsim, HangsUpOnRubbish) {
    Process process = start();
    expectListening(process);
    Link* link = nullptr;
    ASSERT_TRUE(Client::connectUnixServer(socket.c_str(), link).isSuccess());
    const std::unique_ptr<Link> owner(link);
    const std::string request = "<AZUB version='0.2.0'><GetAudioTs_Request /></AZUB>\n\n";
    EXPECT_TRUE(link->write(request.data(), request.size()).isSuccess());
    char byte;
    std::size_t bytesRead = 0;
    EXPECT_EQ(link->read(&byte, 1, bytesRead).code, Link::ResultCode::ClosedByDistant);
    process.readUntil("\n");
    EXPECT_EQ(process.readUntil("\n"),
              "azubsim: closing a connection: bad request: version is not '0.1.0'\n");
}
