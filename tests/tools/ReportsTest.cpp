#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "tests/tools/Exchanges.h"
#include "tools/azubsim/engine/AudioEngine.h"
#include "tools/azubsim/protocol/Names.h"
#include "tools/azubsim/report/Reports.h"
#include "tools/azubsim/report/Trace.h"

namespace {

using namespace azubsim;
using nlohmann::json;
using std::chrono::microseconds;
using testing::IsSubstring;
using tests::allBytes;
using tests::exchange;
using tests::frame;
using tests::getAudioTs;
using tests::setMargin;
using tests::whole;

// Rendering is half a second after capture, or before it.
std::string audioAnswer(int code, const std::string& message, bool isLate = true) {
    const std::string half = isLate ? "2147483648" : "0x80000000";
    return tests::timestampsFrame(isLate ? "0" : half, isLate ? half : "0", "+9", "62",
                                  std::to_string(code), message);
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
    std::stringstream stream;
    azubsim::Trace trace(stream);
    Exchange slow = exchange(1, 0, getAudioTs, whole(audioAnswer(1000, "\xFF")), "delay 1");
    slow.reply.pieces[0].wait = microseconds(900);
    trace.add(slow);
    trace.add(exchange(1, 100, setMargin, whole(tests::delayFrame("1000"))));
    trace.add(exchange(2, 50, getAudioTs, whole(audioAnswer(1003, "no call"))));
    trace.add(exchange(1, 600, allBytes(), {{}, true}, allBytes()));
    trace.end();
    std::map<int, long long> ends;
    std::map<std::string, int> events;
    std::string figures;
    for (const json& event : json::parse(stream)) {
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

TEST(AudioEngine, AnswersEveryCommand) {
    AudioEngine engine;
    for (const std::string command : names::commands) {
        const Request request =
            parseRequest(frame('<' + command + "_Request>40</" + command + "_Request>"));
        EXPECT_TRUE(engine.answer(request, {})) << command;
    }
}

TEST(ExchangeLine, TellsWhatHappened) {
    setenv("TZ", "UTC0", 1);
    tzset();
    const auto line = [](const std::string& request, const Reply& reply,
                         const std::string& fault = "") {
        return exchangeLine(exchange(2, 0, request, reply, fault));
    };
    const Reply good = whole(audioAnswer(1000, ""));
    const std::string start = "22:13:20.123 #2    ";
    EXPECT_EQ(line(getAudioTs, good),
              start + "GetAudioTs        ok   latency 500.0 jitter  62    0.113 ms");
    EXPECT_EQ(line(getAudioTs, whole(audioAnswer(1000, "", false))),
              start + "GetAudioTs        ok   latency -500.0 jitter  62   0.113 ms");
    EXPECT_EQ(line(setMargin, whole(tests::delayFrame("1000"))),
              start + "SetAudioDelay 40  ok   margin 40                   0.113 ms");
    EXPECT_EQ(line(getAudioTs, whole(audioAnswer(1003, "no\n\x1B[2J\xE2\x80\xAE call")), "error 7"),
              start + R"(GetAudioTs        1003 "no\n\x1b[2J\xe2\x80\xae call")"
                      "   0.113 ms  fault: error 7");

    Exchange silent = exchange(2, 0, getAudioTs, {{}, true});
    silent.engineTook = microseconds(0);
    EXPECT_EQ(exchangeLine(silent), start + "GetAudioTs        no answer, closed");
    silent.fault = "close-before";
    silent.said = good.bytes();
    EXPECT_EQ(exchangeLine(silent), start +
                                        "GetAudioTs        no answer, closed               "
                                        "fault: close-before  "
                                        "engine: ok   latency 500.0 jitter  62");
    silent = exchange(2, 0, "", {{{microseconds(0), std::string(17, 'x')}}, false});
    silent.engineTook = microseconds(0);
    EXPECT_EQ(exchangeLine(silent), start + "no request (17 bytes)");
    silent.request = "<AZUB version='0.2.0'/>";
    EXPECT_EQ(exchangeLine(silent), start + R"(bad request       unfinished answer (17 bytes) )"
                                            R"("version is '0.2.0', expected '0.1.0'")");

    // A command that this program does not know.
    const auto other = [](const std::string& name) { return frame('<' + name + "_Request />"); };
    EXPECT_PRED_FORMAT2(
        IsSubstring, "New               ok ",
        line(other("New"), whole(frame("<New_Answer><Result><ErrorCode>1000</ErrorCode><Message "
                                       "/></Result></New_Answer>"))));
    EXPECT_PRED_FORMAT2(IsSubstring, "answer to another command", line(other("New"), good));
    EXPECT_PRED_FORMAT2(IsSubstring,
                        "invalid answer (3 bytes) \"not XML: ", line(setMargin, whole("<x>\n\n")));
    EXPECT_PRED_FORMAT2(IsSubstring, "  then 5 more bytes, closed",
                        line(getAudioTs, {{{microseconds(0), good.bytes() + "extra"}}, true}));
}

} // namespace
