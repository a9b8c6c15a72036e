// How exchanges are shown: as a trace and as lines of text.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/support/TemporaryDirectory.h"
#include "tests/tools/Exchanges.h"
#include "tools/azubsim/ExchangeLine.h"
#include "tools/azubsim/Trace.h"

namespace {

using namespace azubsim;
using nlohmann::json;
using std::chrono::microseconds;
using testing::IsSubstring;
using tests::allBytes;
using tests::contents;
using tests::exchange;
using tests::whole;

std::string request(const std::string& command) {
    return "<AZUB version=\"0.1.0\">" + command + "</AZUB>";
}

const std::string getAudioTs = request("<GetAudioTs_Request />");

std::string result(int code, const std::string& message) {
    return "<Result><ErrorCode>" + std::to_string(code) + "</ErrorCode><Message>" + message +
           "</Message></Result>";
}

// Rendering is half a second after capture, or before it.
std::string audioAnswer(int code, const std::string& message, bool isLate = true) {
    const std::string half = isLate ? "2147483648" : "0x80000000";
    return request("<GetAudioTs_Answer><LipSyncNtpTimestamps><capture_timestamp>" +
                   (isLate ? "0" : half) + "</capture_timestamp><rendering_timestamp>" +
                   (isLate ? half : "0") +
                   "</rendering_timestamp><receiving_timestamp>+9</receiving_timestamp>"
                   "<jitter_buffer_depth>62</jitter_buffer_depth></LipSyncNtpTimestamps>" +
                   result(code, message) + "</GetAudioTs_Answer>");
}

std::string delayAnswer() {
    return request("<SetAudioDelay_Answer>" + result(1000, "") + "</SetAudioDelay_Answer>");
}

// Checks one event against the rules of the format. `ends` has the end of each track's last slice.
void checkEvent(const json& event, std::map<int, long long>& ends) {
    const std::string phase = event.at("ph");
    EXPECT_TRUE(event.at("name").is_string() && event.at("pid").is_number()) << event;
    const int track = event.at("tid");
    if (phase == "M") {
        EXPECT_TRUE(event.at("args").at("name").is_string()) << event;
        return;
    }
    EXPECT_GE(event.at("ts").get<double>(), 1.7e15) << event;
    if (phase == "X") {
        const long long start = event["ts"];
        const long long length = event.at("dur");
        EXPECT_GE(length, 0) << event;
        EXPECT_GE(start, ends[track]) << event;
        ends[track] = start + length;
    } else if (phase == "C") {
        EXPECT_TRUE(event.at("args").at("ms").is_number()) << event;
    } else {
        EXPECT_EQ(phase + event.at("s").get<std::string>(), "it") << event;
    }
}

TEST(Trace, FollowsTheRulesOfItsFormat) {
    const tests::TemporaryDirectory directory;
    const std::string file = directory.path() + "/file";
    std::string error;
    {
        Trace trace;
        ASSERT_TRUE(trace.open(file, false, error)) << error;
        Exchange slow = exchange(1, 0, getAudioTs, whole(audioAnswer(1000, "\xFF")), "delay 1");
        slow.reply.pieces[0].wait = microseconds(900);
        trace.add(slow);
        trace.add(exchange(1, 100, request("<SetAudioDelay_Request>40</SetAudioDelay_Request>"),
                           whole(delayAnswer())));
        trace.add(exchange(2, 50, getAudioTs, whole(audioAnswer(1003, "no call"))));
        trace.add(exchange(1, 600, allBytes(), {{}, Reply::End::Close}, allBytes()));
        // What a killed program leaves: the same without the bracket.
        const std::string killed = contents(file);
        EXPECT_TRUE(json::accept(killed + "]"));
    }
    std::map<int, long long> ends;
    std::map<std::string, int> events;
    std::string figures;
    for (const json& event : json::parse(contents(file))) {
        checkEvent(event, ends);
        ++events[event["ph"]];
        if (event["ph"] == "C") {
            figures += event["name"].get<std::string>() + ' ' + event["args"]["ms"].dump() + ' ';
        }
        if (event["ph"] == "X" && event["tid"] == 2) {
            EXPECT_EQ(event["dur"], 113);
            EXPECT_EQ(event["args"]["message"], "no call");
        }
    }
    EXPECT_EQ(events, (std::map<std::string, int>{{"M", 3}, {"X", 4}, {"C", 3}, {"i", 2}}));
    EXPECT_EQ(figures, "audio latency 500.0 jitter depth 62 margin 40 ");
}

TEST(ExchangeLine, TellsWhatHappened) {
    setenv("TZ", "UTC0", 1);
    tzset();
    const std::string margin = request("<SetAudioDelay_Request>40</SetAudioDelay_Request>");
    const auto line = [](const std::string& request, const Reply& reply,
                         const std::string& fault = "") {
        return exchangeLine(exchange(2, 0, request, reply, fault));
    };
    const Reply good = whole(audioAnswer(1000, ""));
    const std::string start = "22:13:20.123  client 2   ";
    EXPECT_EQ(line(getAudioTs, good),
              start + "GetAudioTs         ok    latency 500.0 ms  jitter  62 ms   0.113 ms");
    EXPECT_EQ(line(getAudioTs, whole(audioAnswer(1000, "", false))),
              start + "GetAudioTs         ok    latency -500.0 ms  jitter  62 ms   0.113 ms");
    EXPECT_EQ(line(margin, whole(delayAnswer())),
              start + "SetAudioDelay 40   ok    margin 40 ms                      0.113 ms");
    EXPECT_EQ(
        line(getAudioTs, whole(audioAnswer(1003, "no\n\x1B[2J call")), "error 7"),
        start +
            R"(GetAudioTs         1003  "no\n\x1b[2J call"                0.113 ms  fault: error 7)");

    Exchange silent = exchange(2, 0, getAudioTs, {{}, Reply::End::Close});
    silent.engineTook = microseconds(0);
    EXPECT_EQ(exchangeLine(silent), start + "GetAudioTs         no answer, closed");
    silent.request.clear();
    silent.reply = {{{microseconds(0), std::string(17, 'x')}}, Reply::End::Open};
    EXPECT_EQ(exchangeLine(silent), start + "no request (17 bytes)");
    silent.request = "<AZUB version='0.2.0'/>";
    EXPECT_EQ(exchangeLine(silent), start + R"(bad request        unfinished answer (17 bytes)  )"
                                            R"("version is '0.2.0', expected '0.1.0'")");

    EXPECT_PRED_FORMAT2(IsSubstring, "  ok ", line("?", good));
    EXPECT_PRED_FORMAT2(IsSubstring, "answer to another command", line(margin, good));
    EXPECT_PRED_FORMAT2(IsSubstring, "invalid answer (3 bytes)", line(margin, whole("<x>")));
    EXPECT_PRED_FORMAT2(
        IsSubstring, "  then 5 more bytes, reset",
        line(getAudioTs, {{{microseconds(0), good.bytes() + "extra"}}, Reply::End::Reset}));
}

} // namespace
