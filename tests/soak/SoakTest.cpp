// A pipeline that runs for long against an engine that often misbehaves.

#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>
#include <vector>

#include "lipsyncapi/Service.h"
#include "tests/support/OpenDescriptors.h"
#include "tests/support/Silence.h"
#include "tests/tools/Engine.h"

using tests::Engine;
using velta::zub::common::LipSyncNtpTimestamps;
using velta::zub::lipsyncapi::Service;

namespace {

enum class Request : char { SetDelay, GetTimestamps };

// How an exchange can end, and what the result's text then begins with.
enum class Outcome : char { Success, Refused, NotInCall, Version, Element, Child, Number, Closed };

const std::string unreadable =
    "An error has occured in the transport layer (Code 1005): {Serializer error (Code 5903): {";

const std::map<Outcome, std::string> beginnings = {
    {Outcome::Success, "Success"},
    {Outcome::Refused,
     "The lipsync server returned an error (Code 1006): {Invalid parameter (Code 1002): no}"},
    {Outcome::NotInCall, "The AZUB is not performing a call (Code 1007): {Bad state (Code 1003)}"},
    {Outcome::Version, unreadable + "Conversion failed (Code 71): Version does not match; "},
    {Outcome::Element, unreadable + "Wrong XML node (Code 68): Trying to deserialize the wrong "},
    {Outcome::Child, unreadable + "Child not found (Code 69): No"},
    {Outcome::Number, unreadable + "Conversion failed (Code 71): Unable to convert from string "},
    {Outcome::Closed,
     "An error has occured in the transport layer (Code 1005): {Connection closed by distant (Code "
     "5905): {Protocol has been closed by distant (Code 40005): {Closed by distant (Code "
     "10003)}}}"},
};

// The faults that end by themselves, and how an exchange ends that meets one. An answer that is
// cut in its middle lacks an element or ends in the middle of a number, which is one all the same.
const std::map<std::string, Outcome> faults = {
    {"", Outcome::Success},
    {"error 1002 no", Outcome::Refused},
    {"error 1003", Outcome::NotInCall},
    {"version 0.2.0", Outcome::Version},
    {"element Other_Answer", Outcome::Element},
    {"missing ErrorCode", Outcome::Child},
    {"number x1", Outcome::Number},
    {"cut", Outcome::Child},
    {"close-before", Outcome::Closed},
    {"close-middle", Outcome::Closed},
    {"split", Outcome::Success},
    {"double", Outcome::Success},
    {"delay 1", Outcome::Success},
    {"flood", Outcome::Closed},
    {"reset", Outcome::Closed},
};

struct Exchange {
    Request request;
    Outcome outcome;
};

using Connections = std::vector<std::vector<Exchange>>;

// What comes back on a connection is known from what the engine says it did there.
Connections recordedAnswers(const std::string& path) {
    Connections answers;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        const auto record = nlohmann::json::parse(line);
        const bool isGet = record["request"].get<std::string>().find("Get") != std::string::npos;
        const std::string fault = record["fault"];
        answers.resize(std::max(answers.size(), record["client"].get<std::size_t>()));
        auto& connection = answers.back();
        const Exchange answer{isGet ? Request::GetTimestamps : Request::SetDelay, faults.at(fault)};
        connection.insert(connection.end(), fault == "double" ? 2 : 1, answer);
    }
    return answers;
}

// Behind a doubled answer, each request reads the answer to the one before...
bool isRead(const Exchange& exchange, const Exchange& answer) {
    const bool isElementReached =
        answer.outcome != Outcome::Version && answer.outcome != Outcome::Closed;
    return exchange.outcome == (isElementReached && answer.request != exchange.request
                                    ? Outcome::Element
                                    : answer.outcome);
}

// ... or cannot be written any more, because that answer was to close the connection.
bool isRefused(const Exchange& exchange, const std::vector<Exchange>& answers) {
    return exchange.outcome == Outcome::Closed && answers.back().outcome == Outcome::Closed;
}

std::size_t countUnexplained(const Connections& seen, const Connections& answers) {
    std::size_t unexplained = 0;
    for (std::size_t i = 0; i < seen.size(); ++i) {
        for (std::size_t j = 0; j < seen[i].size(); ++j) {
            const bool isExplained =
                i < answers.size() && j < answers[i].size() &&
                (isRead(seen[i][j], answers[i][j]) || isRefused(seen[i][j], answers[i]));
            unexplained += isExplained ? 0 : 1;
        }
    }
    return unexplained;
}

class Pipeline {
public:
    // Memory for what will be seen is taken here, and not while memory is measured.
    Pipeline(std::string socket, std::size_t exchanges) : _socket(std::move(socket)) {
        _seen.reserve(exchanges);
    }

    void run(int exchanges) {
        for (int i = 0; i < exchanges; ++i) {
            step();
        }
    }

    Connections seen() const {
        Connections connections;
        for (const Exchange& exchange : _seen) {
            if (exchange.request == Request::SetDelay) {
                connections.emplace_back();
            }
            connections.back().push_back(exchange);
        }
        return connections;
    }

private:
    // One exchange; a connection that has failed is replaced before it, and the margin set again.
    void step() {
        if (!_isConnected) {
            reconnect();
            record(Request::SetDelay, _service.setAudioDelayMargin(40));
        } else {
            LipSyncNtpTimestamps timestamps;
            record(Request::GetTimestamps, _service.getAudioTimestamps(timestamps));
        }
    }

    void reconnect() {
        _service.disconnect();
        const auto connected = _service.connect(_socket);
        ASSERT_TRUE(connected.isSuccess()) << connected.format();
    }

    void record(Request request, const Service::Result& result) {
        const std::string text = result.format();
        const auto found = std::find_if(beginnings.begin(), beginnings.end(), [&](const auto& b) {
            return text.compare(0, b.second.size(), b.second) == 0;
        });
        ASSERT_NE(found, beginnings.end()) << text;
        _seen.push_back({request, found->first});
        _isConnected = result.code != Service::ResultCode::TransportError;
    }

    std::string _socket;
    Service _service;
    bool _isConnected = false;
    std::vector<Exchange> _seen;
};

} // namespace

TEST(Soak, EveryOutcomeOfTenThousandExchangesIsExplainedAndNothingGrows) {
    constexpr int exchanges = 10'000;
    const tests::TemporaryDirectory directory;
    const std::string recording = directory.path() + "/recording";
    std::vector<std::string> options{"--every",       "4",      "--seed",   "1",
                                     "--flood-limit", "100000", "--record", recording};
    for (const auto& fault : faults) {
        if (!fault.first.empty()) {
            options.insert(options.end(), {"--fault", fault.first});
        }
    }
    std::signal(SIGPIPE, SIG_IGN);
    auto engine = std::make_unique<Engine>(options);
    Pipeline pipeline(engine->socket(), exchanges);
    {
        const tests::Silence silence;
        pipeline.run(exchanges / 10);
        const auto descriptors = tests::openDescriptors();
        const std::size_t memory = mallinfo2().uordblks;
        pipeline.run(exchanges - exchanges / 10);
        EXPECT_EQ(tests::openDescriptors(), descriptors);
        EXPECT_LT(mallinfo2().uordblks, memory + 10'000);
    }
    engine.reset();
    const Connections seen = pipeline.seen();
    std::map<Outcome, int> outcomes;
    for (const auto& connection : seen) {
        for (const Exchange& exchange : connection) {
            ++outcomes[exchange.outcome];
        }
    }
    for (const auto& outcome : outcomes) {
        std::printf("%5d  %.160s\n", outcome.second, beginnings.at(outcome.first).c_str());
    }
    EXPECT_EQ(outcomes.size(), beginnings.size()) << "not every fault was met";
    // Each one was seen, and none without a reason.
    EXPECT_EQ(countUnexplained(seen, recordedAnswers(recording)), 0U);
}

TEST(Soak, AWaitEndsWithTheEngine) {
    std::signal(SIGPIPE, SIG_IGN);
    const tests::Silence silence;
    Service service;
    long descriptors = 0;
    for (int round = 0; round < 20; ++round) {
        Engine engine({"--every", "3", "--seed", std::to_string(round), "--fault", "silence",
                       "--fault", "zero"});
        EXPECT_TRUE(service.connect(engine.socket()).isSuccess());
        std::thread watchdog([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            engine.process().signal(SIGKILL);
        });
        LipSyncNtpTimestamps timestamps;
        Service::Result result = service.getAudioTimestamps(timestamps);
        while (result.isSuccess()) {
            result = service.getAudioTimestamps(timestamps);
        }
        watchdog.join();
        EXPECT_EQ(result.format(), beginnings.at(Outcome::Closed));
        EXPECT_TRUE(service.disconnect().isSuccess());
        if (round == 0) {
            descriptors = tests::openDescriptors();
        }
        EXPECT_EQ(tests::openDescriptors(), descriptors);
    }
}
