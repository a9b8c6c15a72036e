#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <regex>

#include "comms/Client.h"
#include "lipsyncapi/Service.h"
#include "tests/tools/Engine.h"

using tests::Engine;
using velta::zub::common::LipSyncNtpTimestamps;
using velta::zub::comms::Client;
using velta::zub::comms::Link;
using velta::zub::lipsyncapi::Service;

namespace {

// What lipsyncctl prints when it reads timestamps from an engine with a fault; "waits" if it does
// not end.
std::string seen(const std::string& fault) {
    Engine engine({"--fault", fault, "--flood-limit", "100000"});
    tests::Process reader({LIPSYNCCTL, "timestamps", "--socket", engine.socket()});
    std::string output = reader.readUntil("Client is connecting");
    if (fault != "silence" && fault != "zero") {
        return output + reader.readAll();
    }
    output += reader.readFor(300);
    return reader.isRunning() ? "waits" : output;
}

// A client that asks twice and reads one answer.
std::unique_ptr<Link> askTwice(const Engine& engine) {
    Link* link = nullptr;
    EXPECT_TRUE(Client::connectUnixServer(engine.socket().c_str(), link).isSuccess());
    const std::string request = "<AZUB version=\"0.1.0\"><GetAudioTs_Request /></AZUB>\n\n";
    EXPECT_TRUE(link->write((request + request).data(), 2 * request.size()).isSuccess());
    char byte = 0;
    std::size_t bytesRead = 0;
    EXPECT_TRUE(link->read(&byte, 1, bytesRead).isSuccess());
    return std::unique_ptr<Link>(link);
}

} // namespace

TEST(Faults, GiveTheResultsThatAreDocumented) {
    std::ifstream document(DOCS "/faults.md");
    const std::regex row("\\| `([^`]+)` \\| `([^`]+)` \\|.*");
    int rows = 0;
    for (std::string line; std::getline(document, line);) {
        std::smatch cells;
        if (!std::regex_match(line, cells, row)) {
            continue;
        }
        ++rows;
        const std::string fault = cells[1];
        std::string expected = cells[2];
        std::string output = seen(fault);
        if (expected == "Success") {
            EXPECT_NE(output.find("  latency "), std::string::npos) << fault << ": " << output;
        } else if (expected == "waits") {
            EXPECT_EQ(output, "waits") << fault;
        } else {
            const std::size_t rest = expected.find("...");
            expected = rest == std::string::npos ? expected.append("\n") : expected.substr(0, rest);
            EXPECT_NE(output.find("\nlipsyncctl: " + expected), std::string::npos)
                << fault << ": " << output;
        }
    }
    EXPECT_GE(rows, 22);
}

TEST(Faults, OfDeliveryAreSeenByTheNextCallOrTheClock) {
    const tests::Silence silence;
    Engine twice({"--fault", "double"});
    Service service;
    LipSyncNtpTimestamps timestamps;
    service.connect(twice.socket());
    EXPECT_EQ(service.getAudioTimestamps(timestamps).format(), "Success");
    EXPECT_NE(service.setAudioDelayMargin(20).format().find("Found \"GetAudioTs_Answer\""),
              std::string::npos);
    service.disconnect();

    Engine late({"--fault", "delay 100"});
    service.connect(late.socket());
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(service.getAudioTimestamps(timestamps).format(), "Success");
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
}

TEST(Faults, SpoilSomeAnswersRepeatably) {
    const auto outcomes = [](std::vector<std::string> options) {
        options.insert(options.end(), {"--fault", "error 7", "--fault", "error 8"});
        Engine engine(options);
        Service service;
        service.connect(engine.socket());
        std::string codes;
        for (int i = 0; i < 12; ++i) {
            LipSyncNtpTimestamps timestamps;
            const std::string text = service.getAudioTimestamps(timestamps).format();
            codes.push_back(text == "Success" ? '.' : text[text.size() - 3]);
        }
        return codes;
    };
    const tests::Silence silence;
    EXPECT_EQ(outcomes({"--every", "3"}), "..7..8..7..8");
    EXPECT_EQ(outcomes({}), "787878787878");
    const std::string random = outcomes({"--every", "2", "--seed", "5"});
    EXPECT_EQ(outcomes({"--every", "2", "--seed", "5"}), random);
    EXPECT_NE(outcomes({"--every", "2", "--seed", "6"}), random);
}

TEST(Faults, ChangeByLinesOnStandardInput) {
    const tests::Silence silence;
    Engine engine({});
    Service service;
    service.connect(engine.socket());
    const auto codeAfter = [&](const std::string& line) {
        engine.process().write(line + "\nstatus\n");
        engine.process().readUntil("every ");
        LipSyncNtpTimestamps timestamps;
        return static_cast<int>(service.getAudioTimestamps(timestamps).code);
    };
    EXPECT_EQ(codeAfter(""), 1000);
    EXPECT_EQ(codeAfter("call off"), 1007);
    EXPECT_EQ(codeAfter("call on"), 1000);
    EXPECT_EQ(codeAfter("fault error 7"), 1006);
    EXPECT_EQ(codeAfter("fault nonsense"), 1006);
    EXPECT_EQ(codeAfter("fault none"), 1000);
    engine.process().write("nonsense\nquit\n");
    EXPECT_NE(engine.process().readAll().find("not understood: nonsense"), std::string::npos);
    EXPECT_EQ(engine.process().wait(), 0);
}

TEST(Faults, OfOneClientDoNotHoldUpAnother) {
    const tests::Silence silence;
    Engine engine({"--fault", "delay 60000", "--fault", "flood", "--every", "2"});
    // The first answer is good, the second delayed, the third good, the fourth floods a client
    // that does not read.
    const std::unique_ptr<Link> slow = askTwice(engine);
    const std::unique_ptr<Link> flooded = askTwice(engine);
    Service service;
    service.connect(engine.socket());
    LipSyncNtpTimestamps timestamps;
    EXPECT_EQ(service.getAudioTimestamps(timestamps).format(), "Success");
}

TEST(Faults, RecordedAnswersCanBeReplayed) {
    const tests::Silence silence;
    const tests::TemporaryDirectory directory;
    const std::string file = directory.path() + "/record";
    const auto read = [](Engine& engine) {
        Service service;
        service.connect(engine.socket());
        LipSyncNtpTimestamps first;
        LipSyncNtpTimestamps second;
        EXPECT_EQ(service.getAudioTimestamps(first).format(), "Success");
        EXPECT_EQ(service.getAudioTimestamps(second).code, Service::ResultCode::TransportError);
        return first.audioCaptureTimestamp;
    };
    Engine recorder({"--record", file, "--fault", "close-before", "--every", "2"});
    const unsigned long capture = read(recorder);
    std::ifstream recorded(file);
    const std::string faults[] = {"", "close-before"};
    for (const std::string& fault : faults) {
        std::string line;
        std::getline(recorded, line);
        const nlohmann::json exchange = nlohmann::json::parse(line);
        EXPECT_NE(exchange["request"].get<std::string>().find("GetAudioTs_Request"),
                  std::string::npos);
        EXPECT_GT(exchange["time"], 1e9);
        EXPECT_EQ(exchange["fault"], fault);
    }
    Engine replay({"--replay", file});
    EXPECT_EQ(read(replay), capture);
    Service late;
    LipSyncNtpTimestamps timestamps;
    late.connect(replay.socket());
    EXPECT_EQ(late.getAudioTimestamps(timestamps).code, Service::ResultCode::TransportError);

    std::ofstream(file) << "{}\n";
    tests::Process broken({AZUBSIM, "--socket", directory.path() + "/s", "--replay", file});
    EXPECT_EQ(broken.readAll(),
              "azubsim: cannot replay " + file + ": line 1 is no recorded exchange\n");
}
