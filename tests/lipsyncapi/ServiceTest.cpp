#include "lipsyncapi/Service.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <fstream>
#include <functional>
#include <locale>

#include "tests/replacements/LogCapture.h"
#include "tests/support/EngineDouble.h"
#include "tests/support/Frames.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/TemporaryDirectory.h"

using tests::delayFrame;
using tests::EngineDouble;
using tests::frame;
using tests::LogCapture;
using tests::timestampsFrame;
using velta::zub::common::LipSyncNtpTimestamps;
using velta::zub::lipsyncapi::Service;

namespace {

const std::string notConnected = "Bad state (Code 1003): Not connected to the audio ZUB";
const std::string goneText =
    "An error has occured in the transport layer (Code 1005): {Connection closed by distant (Code "
    "5905): {Protocol has been closed by distant "
    "(Code 40005): {Closed by distant (Code 10003)}}}";

std::string values(const LipSyncNtpTimestamps& t) {
    return std::to_string(t.audioCaptureTimestamp) + ' ' +
           std::to_string(t.audioRenderingTimestamp) + ' ' +
           std::to_string(t.audioReceivingTimestamp) + ' ' + std::to_string(t.jbmCurrentDepth);
}

LipSyncNtpTimestamps callersValues() {
    LipSyncNtpTimestamps timestamps;
    timestamps.audioCaptureTimestamp = 5;
    timestamps.audioRenderingTimestamp = 6;
    timestamps.audioReceivingTimestamp = 7;
    timestamps.jbmCurrentDepth = 8;
    return timestamps;
}

// The result of one exchange in which the engine answers so.
std::string answered(const std::string& call, const std::string& answer) {
    EngineDouble engine({answer});
    Service service;
    service.connect(engine.path());
    if (call == "margin") {
        return service.setAudioDelayMargin(40).format();
    }
    LipSyncNtpTimestamps timestamps = callersValues();
    const std::string result = service.getAudioTimestamps(timestamps).format();
    return result + " | " + values(timestamps);
}

// The last line of the log while `call` runs; the platform and standard error must agree.
std::string logged(const std::function<void()>& call) {
    LogCapture capture;
    call();
    if (capture.records().empty()) {
        return capture.standardError();
    }
    const std::string prefix = "4/AZUBLIPSYNCAPI ";
    const std::string& record = capture.records().back();
    EXPECT_EQ(capture.records().size(), 1U);
    EXPECT_EQ(record.substr(0, prefix.size()), prefix);
    EXPECT_EQ(capture.standardError(), "I/AZUBLIPSYNCAPI " + record.substr(prefix.size()) + "\n");
    return record.substr(prefix.size());
}

struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

} // namespace

TEST(Service, RefusesEverythingWhenNotConnected) {
    Service service;
    unsigned long granularityMs = 1;
    unsigned long marginMs = 2;
    LipSyncNtpTimestamps timestamps = callersValues();
    EXPECT_EQ(service.disconnect().format(), notConnected);
    EXPECT_EQ(service.getCapabilities(granularityMs, marginMs).format(), notConnected);
    EXPECT_EQ(service.getAudioDelayMargin(marginMs).format(), notConnected);
    EXPECT_EQ(service.setAudioDelayMargin(150).format(), notConnected);
    EXPECT_EQ(service.getAudioTimestamps(timestamps).format(), notConnected);
    EXPECT_EQ(service.setVideoTimestamps(timestamps).format(), notConnected);
    EXPECT_EQ(granularityMs, 1UL);
    EXPECT_EQ(marginMs, 2UL);
    EXPECT_EQ(values(timestamps), "5 6 7 8");
}

TEST(Service, ConnectsOnceAndAgainAfterDisconnecting) {
    const tests::TemporaryDirectory directory;
    const std::string nobody = directory.path() + "/nobody";
    const int before = tests::openDescriptors();
    {
        Service service;
        EXPECT_EQ(service.connect(nobody).format(),
                  "Cannot connect to Audio ZUB (Code 1004): {Connection has failed (Code 20002): "
                  "Unable to connect to " +
                      nobody + " {No such file or directory (Code 2)}}");
        EngineDouble first({delayFrame("1000"), delayFrame("1000")});
        EXPECT_EQ(service.connect(first.path()).format(), "Success");
        EXPECT_EQ(service.setAudioDelayMargin(60).format(), "Success");
        EXPECT_EQ(service.connect(first.path()).format(),
                  "Bad state (Code 1003): Already connected to the audio ZUB");
        EXPECT_EQ(service.setAudioDelayMargin(40).format(), "Success");
        EXPECT_EQ(service.disconnect().format(), "Success");
        EXPECT_EQ(first.received(), frame("<SetAudioDelay_Request>60</SetAudioDelay_Request>") +
                                        frame("<SetAudioDelay_Request>40</SetAudioDelay_Request>"));

        EngineDouble second({});
        EXPECT_EQ(service.connect(second.path()).format(), "Success");
        unsigned long marginMs = 0;
        EXPECT_EQ(service.getAudioDelayMargin(marginMs).format(), "Success");
        EXPECT_EQ(marginMs, 40UL);
        EXPECT_EQ(service.disconnect().format(), "Success");
    }
    EXPECT_EQ(tests::openDescriptors(), before);
}

TEST(Service, AnswersLocallyWhatItKnows) {
    EngineDouble engine({});
    Service service;
    service.connect(engine.path());
    unsigned long granularityMs = 0;
    unsigned long maxMs = 0;
    unsigned long marginMs = 7;
    EXPECT_EQ(logged([&] {
                  EXPECT_TRUE(service.getCapabilities(granularityMs, maxMs).isSuccess());
                  EXPECT_TRUE(service.getAudioDelayMargin(marginMs).isSuccess());
                  EXPECT_TRUE(service.setVideoTimestamps(callersValues()).isSuccess());
              }),
              "");
    EXPECT_EQ(granularityMs, 20UL);
    EXPECT_EQ(maxMs, 100UL);
    EXPECT_EQ(marginMs, 0UL);
    service.disconnect();
    EXPECT_EQ(engine.received(), "");
}

TEST(Service, ChecksMarginsBeforeItSendsThem) {
    EngineDouble engine({delayFrame("1000"), delayFrame("1000"), delayFrame("1003")});
    Service service;
    service.connect(engine.path());
    const std::string invalid = "Invalid Param (Code 1002):  audio delay margin ";
    const struct {
        unsigned long delayMs;
        std::string result;
        unsigned long marginAfter;
    } cases[] = {
        {100, "Success", 100},
        {0, "Success", 0},
        {101, invalid + "101 is not in range [0..100]", 0},
        {150, invalid + "150 is not in range [0..100]", 0},
        {120, invalid + "120 is not in range [0..100]", 0},
        {10, invalid + "10 doesn't match  granularity of 20ms.", 0},
        {90, invalid + "90 doesn't match  granularity of 20ms.", 0},
        {40, "The AZUB is not performing a call (Code 1007): {Bad state (Code 1003)}", 0},
        {60, goneText, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(service.setAudioDelayMargin(c.delayMs).format(), c.result) << c.delayMs;
        unsigned long marginMs = 7;
        service.getAudioDelayMargin(marginMs);
        EXPECT_EQ(marginMs, c.marginAfter) << c.delayMs;
    }
    service.disconnect();
    const auto request = [](const std::string& delayMs) {
        return frame("<SetAudioDelay_Request>" + delayMs + "</SetAudioDelay_Request>");
    };
    EXPECT_EQ(engine.received(), request("100") + request("0") + request("40") + request("60"));
}

TEST(Service, TurnsAnswersIntoResults) {
    std::ifstream table(TEST_DATA "/lipsyncapi/answers.txt");
    std::string call;
    std::string answer;
    std::string expected;
    int rows = 0;
    while (std::getline(table, call)) {
        if (call.empty() || call[0] == '#') {
            continue;
        }
        std::getline(table, answer);
        std::getline(table, expected);
        EXPECT_EQ(answered(call, answer + "\n\n"), expected) << answer;
        ++rows;
    }
    EXPECT_GT(rows, 40);
}

TEST(Service, StaysConnectedWhenTheEngineGoesAway) {
    std::signal(SIGPIPE, SIG_IGN);
    EngineDouble engine({});
    Service service;
    service.connect(engine.path());
    LipSyncNtpTimestamps timestamps = callersValues();
    EXPECT_EQ(service.getAudioTimestamps(timestamps).format(), goneText);
    EXPECT_EQ(service.getAudioTimestamps(timestamps).format(), goneText);
    EXPECT_EQ(values(timestamps), "5 6 7 8");
    EXPECT_EQ(service.disconnect().format(), "Success");
}

TEST(Service, LogsOneLineACall) {
    EngineDouble engine({delayFrame("1000"), timestampsFrame("1", "2", "3", "4")});
    Service service;
    LipSyncNtpTimestamps timestamps = callersValues();
    EXPECT_EQ(logged([&] { service.getAudioTimestamps(timestamps); }),
              "Client is requesting the NTP timestamp with output params: audioCaptureTimestamp=5 "
              "audioRenderingTimestamp=6 audioReceivingTimestamp=7 jbmCurrentDepth=8  with "
              "result: " +
                  notConnected);
    EXPECT_EQ(logged([&] { service.connect("/100%s\nx"); }),
              "Client is connecting with input params: lipsyncSocketName={\n/100%s\nx}\n with "
              "result: Cannot connect to Audio ZUB (Code 1004): {Connection has failed (Code "
              "20002): Unable to connect to /100%s\nx {No such file or directory (Code 2)}}");
    EXPECT_EQ(logged([&] { service.connect(engine.path()); }),
              "Client is connecting with input params: lipsyncSocketName=" + engine.path() +
                  "  with result: Success");
    EXPECT_EQ(logged([&] { service.setAudioDelayMargin(40); }),
              "Client is setting the audio delay margin with input params: delayMs=40  with "
              "result: Success");
    EXPECT_EQ(logged([&] { service.getAudioTimestamps(timestamps); }),
              "Client is requesting the NTP timestamp with output params: audioCaptureTimestamp=1 "
              "audioRenderingTimestamp=2 audioReceivingTimestamp=3 jbmCurrentDepth=4  with "
              "result: Success");
    EXPECT_EQ(logged([&] { service.disconnect(); }), "Client is disconnected with result: Success");
    EXPECT_EQ(logged([] { const Service fresh; }),
              "Client is disconnected with result: " + notConnected);
}

TEST(Service, ConnectsToTheDefaultSocket) {
    EXPECT_EQ(Service::defaultLipsyncSocketName, "/dev/socket/azub_lipsync");
    Service service;
    const std::string line = logged([&] { service.connect(); });
    EXPECT_EQ(line.rfind("Client is connecting with input params: "
                         "lipsyncSocketName=/dev/socket/azub_lipsync  with result: ",
                         0),
              0U)
        << line;
}

TEST(Service, IgnoresTheCallersLocale) {
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new Grouping));
    EngineDouble engine({timestampsFrame("18446744073709551615", "1000000", "3", "4"),
                         timestampsFrame("1.000", "2", "3", "4")});
    Service service;
    service.connect(engine.path());
    LipSyncNtpTimestamps timestamps;
    EXPECT_EQ(logged([&] { service.getAudioTimestamps(timestamps); }),
              "Client is requesting the NTP timestamp with output params: "
              "audioCaptureTimestamp=18446744073709551615 audioRenderingTimestamp=1000000 "
              "audioReceivingTimestamp=3 jbmCurrentDepth=4  with result: Success");
    EXPECT_EQ(values(timestamps), "18446744073709551615 1000000 3 4");
    EXPECT_EQ(service.getAudioTimestamps(timestamps).code, Service::ResultCode::TransportError);
    EXPECT_EQ(service.setAudioDelayMargin(1000000).message,
              " audio delay margin 1000000 is not in range [0..100]");
    std::locale::global(before);
}

TEST(ServiceDeathTest, ADeadEngineKillsACallerThatDoesNotIgnoreSigpipe) {
    EXPECT_EXIT(
        {
            std::signal(SIGPIPE, SIG_DFL);
            EngineDouble engine({});
            Service service;
            service.connect(engine.path());
            LipSyncNtpTimestamps timestamps;
            service.getAudioTimestamps(timestamps);
            service.getAudioTimestamps(timestamps);
        },
        testing::KilledBySignal(SIGPIPE), "Connection closed by distant");
}

TEST(ServiceDeathTest, NamesAMissingPermission) {
    const EngineDouble engine({});
    EXPECT_EXIT(
        {
            // The folder of the socket is only for who made it.
            chmod(engine.path().c_str(), 0);
            if (geteuid() == 0 && seteuid(65534) != 0) {
                _exit(2);
            }
            Service service;
            service.connect(engine.path());
            _exit(0);
        },
        testing::ExitedWithCode(0), "Permission denied \\(Code 13\\)");
}

TEST(ServiceDeathTest, AConnectedServiceWithoutAClientAborts) {
    Service service;
    // Only force can break this invariant: the state stands behind the pointer to the client.
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
