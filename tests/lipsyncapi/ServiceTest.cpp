#include "lipsyncapi/Service.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <fstream>
#include <locale>
#include <tuple>

#include "tests/replacements/LogCapture.h"
#include "tests/support/EngineDouble.h"
#include "tests/support/Files.h"
#include "tests/support/Frames.h"

using namespace tests;
using velta::zub::common::LipSyncNtpTimestamps;
using velta::zub::lipsyncapi::Service;

namespace {

const std::string notConnected = "Bad state (Code 1003): Not connected to the audio ZUB";
constexpr LipSyncNtpTimestamps callersValues{5, 6, 7, 8};

std::string values(const LipSyncNtpTimestamps& t) {
    return std::to_string(t.audioCaptureTimestamp) + ' ' +
           std::to_string(t.audioRenderingTimestamp) + ' ' +
           std::to_string(t.audioReceivingTimestamp) + ' ' + std::to_string(t.jbmCurrentDepth);
}

std::string delayRequest(const std::string& delayMs) {
    return frame("<SetAudioDelay_Request>" + delayMs + "</SetAudioDelay_Request>");
}

// A service connected to a scripted engine.
struct Connection {
    explicit Connection(std::vector<std::string> frames) : engine(std::move(frames)) {
        EXPECT_EQ(service.connect(engine.path()).format(), "Success");
    }

    EngineDouble engine;
    Service service;
};

unsigned long marginOf(const Service& service) {
    unsigned long marginMs = 7;
    EXPECT_TRUE(service.getAudioDelayMargin(marginMs).isSuccess());
    return marginMs;
}

// One log line as written to the platform's log and to standard error.
std::string line(const std::string& text) {
    return "platform 4/AZUBLIPSYNCAPI " + text + "\nI/AZUBLIPSYNCAPI " + text + '\n';
}

// The caller's locale may group digits. The library must not.
struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Grouping));

} // namespace

TEST(Service, RefusesCallsBeforeItIsConnected) {
    Service service;
    unsigned long granularityMs = 1;
    unsigned long marginMs = 2;
    LipSyncNtpTimestamps timestamps = callersValues;
    for (const Service::Result& result :
         {service.disconnect(), service.getCapabilities(granularityMs, marginMs),
          service.getAudioDelayMargin(marginMs), service.setAudioDelayMargin(150),
          service.getAudioTimestamps(timestamps), service.setVideoTimestamps(timestamps)}) {
        EXPECT_EQ(result.format(), notConnected);
    }
    EXPECT_EQ(granularityMs, 1UL);
    EXPECT_EQ(marginMs, 2UL);
    EXPECT_EQ(values(timestamps), "5 6 7 8");
    EXPECT_EQ(values(LipSyncNtpTimestamps()), "0 0 0 0");
}

TEST(Service, ChecksMarginsBeforeItSendsThem) {
    SKIP_WITHOUT_SOCKET_FILES();
    EngineDouble other({});
    Connection connection({delayFrame("1000"), delayFrame("1000"), delayFrame("1003")});
    Service& service = connection.service;
    const std::string invalid = "Invalid Param (Code 1002):  audio delay margin ";
    const std::tuple<unsigned long, std::string, unsigned long> cases[] = {
        {0, "Success", 0},
        {100, "Success", 100},
        {101, invalid + "101 is not in range [0..100]", 100},
        {10, invalid + "10 doesn't match  granularity of 20ms.", 100},
        {40, "The AZUB is not performing a call (Code 1007): {Bad state (Code 1003)}", 100},
        {60, closedByDistant, 100},
    };
    for (const auto& [delayMs, result, marginAfter] : cases) {
        EXPECT_EQ(service.connect(other.path()).format(),
                  "Bad state (Code 1003): Already connected to the audio ZUB");
        EXPECT_EQ(service.setAudioDelayMargin(delayMs).format(), result);
        EXPECT_EQ(marginOf(service), marginAfter) << delayMs;
    }
    EXPECT_EQ(service.disconnect().format(), "Success");
    EXPECT_EQ(connection.engine.received(),
              delayRequest("0") + delayRequest("100") + delayRequest("40") + delayRequest("60"));
    EXPECT_EQ(service.connect(other.path()).format(), "Success");
    EXPECT_EQ(marginOf(service), 100UL);
}

TEST(Service, TurnsAnswersIntoResults) {
    SKIP_WITHOUT_SOCKET_FILES();
    std::ifstream table(sourceFile("tests/lipsyncapi/answers.txt"));
    int rows = 0;
    for (std::string call, answer, expected; std::getline(table, call);) {
        if (call.empty() || call[0] == '#') {
            continue;
        }
        std::getline(table, answer);
        std::getline(table, expected);
        Connection connection({answer + "\n\n"});
        LipSyncNtpTimestamps timestamps = callersValues;
        std::string result;
        if (call == "margin") {
            result = connection.service.setAudioDelayMargin(40).format();
        } else {
            result = connection.service.getAudioTimestamps(timestamps).format();
            result += " | " + values(timestamps);
        }
        EXPECT_EQ(result, expected) << answer;
        ++rows;
    }
    EXPECT_GT(rows, 40);
}

TEST(Service, LogsOneLineForEachCallUnlessItIsAnsweredAtOnce) {
    SKIP_WITHOUT_SOCKET_FILES();
    EngineDouble engine(
        {delayFrame("1000"), timestampsFrame("18446744073709551615", "2000", "3", "4")});
    Service service;
    unsigned long granularityMs = 0;
    unsigned long maxMs = 0;
    LipSyncNtpTimestamps timestamps = callersValues;
    const std::string log = logOf([&] {
        service.getAudioTimestamps(timestamps);
        service.connect("/100%s\nx");
        service.connect(engine.path());
        EXPECT_TRUE(service.getCapabilities(granularityMs, maxMs).isSuccess());
        EXPECT_TRUE(service.setVideoTimestamps(callersValues).isSuccess());
        EXPECT_EQ(marginOf(service), 0UL);
        service.setAudioDelayMargin(40);
        service.getAudioTimestamps(timestamps);
        service.disconnect();
    });
    EXPECT_EQ(
        log, line("Client is requesting the NTP timestamp with output params: "
                  "audioCaptureTimestamp=5 audioRenderingTimestamp=6 audioReceivingTimestamp=7 "
                  "jbmCurrentDepth=8  with result: " +
                  notConnected) +
                 line("Client is connecting with input params: lipsyncSocketName={\n/100%s\nx}\n "
                      "with result: Cannot connect to Audio ZUB (Code 1004): {Connection has "
                      "failed (Code 20002): Unable to connect to /100%s\nx {No such file or "
                      "directory (Code 2)}}") +
                 line("Client is connecting with input params: lipsyncSocketName=" + engine.path() +
                      "  with result: Success") +
                 line("Client is setting the audio delay margin with input params: delayMs=40  "
                      "with result: Success") +
                 line("Client is requesting the NTP timestamp with output params: "
                      "audioCaptureTimestamp=18446744073709551615 audioRenderingTimestamp=2000 "
                      "audioReceivingTimestamp=3 jbmCurrentDepth=4  with result: Success") +
                 line("Client is disconnected with result: Success"));
    EXPECT_EQ(engine.received(), delayRequest("40") + frame("<GetAudioTs_Request />"));
    EXPECT_EQ(granularityMs, 20UL);
    EXPECT_EQ(maxMs, 100UL);
    EXPECT_EQ(Service::capabilityGranularityMs, granularityMs);
    EXPECT_EQ(Service::capabilityMaxAudioDelayMargin, maxMs);
    EXPECT_EQ(logOf([] { const Service fresh; }),
              line("Client is disconnected with result: " + notConnected));
    EXPECT_NE(logOf([&] { service.connect(); })
                  .find("I/AZUBLIPSYNCAPI Client is connecting with input params: "
                        "lipsyncSocketName=/dev/socket/azub_lipsync  with result: "),
              std::string::npos);
}

TEST(Service, CancelEndsABlockedExchangeAndAllLaterOnes) {
    SKIP_WITHOUT_SOCKET_FILES();
    std::signal(SIGPIPE, SIG_IGN);
    const std::string cancelled =
        "An error has occured in the transport layer (Code 1005): {Connection closed (Code 5904): "
        "{Protocol is closed. (Code 40004): {Closed (Code 10002)}}}";
    Service service;
    EngineDouble silent(
        [&](const std::string&) {
            service.cancel();
            return "no end";
        },
        EngineDouble::Once);
    EngineDouble engine({delayFrame("1000")});
    service.cancel();
    EXPECT_EQ(service.connect(silent.path()).format(), "Success");
    EXPECT_EQ(service.setAudioDelayMargin(20).format(), cancelled);
    EXPECT_EQ(silent.received(), delayRequest("20"));
    LipSyncNtpTimestamps timestamps = callersValues;
    EXPECT_EQ(service.getAudioTimestamps(timestamps).format(), cancelled);
    EXPECT_EQ(values(timestamps), "5 6 7 8");
    EXPECT_EQ(service.disconnect().format(), "Success");
    EXPECT_EQ(service.connect(engine.path()).format(), "Success");
    EXPECT_EQ(service.setAudioDelayMargin(20).format(), "Success");
    EXPECT_EQ(service.disconnect().format(), "Success");
}

TEST(ServiceDeathTest, ADeadEngineKillsACallerThatDoesNotIgnoreSigpipe) {
    SKIP_WITHOUT_SOCKET_FILES();
    const auto askTwice = [] {
        std::signal(SIGPIPE, SIG_DFL);
        Connection connection({});
        LipSyncNtpTimestamps timestamps;
        connection.service.getAudioTimestamps(timestamps);
        connection.service.getAudioTimestamps(timestamps);
    };
    EXPECT_EXIT(askTwice(), testing::KilledBySignal(SIGPIPE), "Connection closed by distant");
}

TEST(ServiceDeathTest, AConnectedServiceWithoutAClientAborts) {
    Service service;
    // No call can break this invariant: overwrite the state, which follows the client pointer.
    const int connected = 1;
    std::memcpy(reinterpret_cast<char*>(&service) + sizeof(void*), &connected, sizeof(connected));
    unsigned long value = 0;
    LipSyncNtpTimestamps timestamps;
    const auto assertion = [](const std::string& line) {
        return "F/VELTA lipsyncapi/src/Service.cpp:" + line +
               ": Assertion _commandClient != NULL failed: Inconsistent state client is null";
    };
    EXPECT_DEATH(service.getCapabilities(value, value), assertion("114"));
    EXPECT_DEATH(service.getAudioTimestamps(timestamps), assertion("142"));
    EXPECT_DEATH(service.setAudioDelayMargin(40), assertion("205"));
    EXPECT_EQ(service.setAudioDelayMargin(41).code, Service::ResultCode::InvalidParam);
}
