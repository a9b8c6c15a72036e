#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/TemporaryDirectory.h"
#include "tools/azubsim/ExchangeLine.h"
#include "tools/azubsim/Recorder.h"
#include "tools/azubsim/Replay.h"
#include "tools/azubsim/Trace.h"

namespace {

using namespace azubsim;
using nlohmann::json;
using std::chrono::microseconds;
using testing::IsSubstring;

const std::string header = R"({"format":"azubsim recording","version":2})";

std::string allBytes() {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    return all;
}

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

// An exchange at a number of microseconds after a fixed time.
Exchange exchange(int client, long long time, const std::string& request, Reply reply,
                  const std::string& fault = "") {
    Exchange exchange;
    exchange.client = client;
    exchange.time = std::chrono::system_clock::time_point(
        std::chrono::seconds(1700000000) + std::chrono::milliseconds(123) + microseconds(time));
    exchange.request = request;
    exchange.reply = std::move(reply);
    exchange.fault = fault;
    exchange.engineTook = microseconds(113);
    return exchange;
}

Reply whole(const std::string& document) {
    return {{{microseconds(113), document + endMarker}}, Reply::End::Open};
}

void expectReply(const Reply& reply, const Reply& expected) {
    ASSERT_EQ(reply.pieces.size(), expected.pieces.size());
    for (std::size_t i = 0; i < reply.pieces.size(); ++i) {
        EXPECT_EQ(reply.pieces[i].bytes, expected.pieces[i].bytes);
        EXPECT_EQ(reply.pieces[i].wait, expected.pieces[i].wait);
    }
    EXPECT_EQ(reply.end, expected.end);
}

class Recording : public testing::Test {
protected:
    void record(const std::vector<Exchange>& exchanges) const {
        Recorder recorder;
        std::string error;
        ASSERT_TRUE(recorder.open(file, true, error)) << error;
        for (const Exchange& exchange : exchanges) {
            EXPECT_TRUE(recorder.add(exchange));
        }
    }

    // Replays these lines and returns the error, or else the note.
    std::string replay(const std::string& lines, bool isTimed = true) {
        std::ofstream(file, std::ios::binary) << lines;
        _replay = {};
        std::string error;
        return _replay.open(file, isTimed, error) ? _replay.note() : error;
    }

    std::string contents() const {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    const tests::TemporaryDirectory directory;
    const std::string file = directory.path() + "/file";
    Replay _replay;
};

TEST_F(Recording, KeepsBytesPiecesTimesAndEnds) {
    const Reply odd{{{microseconds(1), allBytes()}, {microseconds(1500001), "\xC3\xA9\n\n"}},
                    Reply::End::Close};
    const Reply late{{{std::chrono::hours(2), "x"}}, Reply::End::Open};
    const Reply none{{}, Reply::End::Reset};
    record({exchange(1, 0, allBytes(), odd, "zero"), exchange(2, 0, "r", late),
            exchange(3, 0, "r", none)});
    const std::string lines = contents();
    EXPECT_PRED_FORMAT2(IsSubstring, R"("utc":"2023-11-14T22:13:20.123000Z","client":1,)", lines);
    EXPECT_EQ(replay(lines), "");
    expectReply(_replay.next(), odd);
    expectReply(_replay.next(), {{{std::chrono::hours(1), "x"}}, Reply::End::Open});
    EXPECT_FALSE(_replay.hasEnded());
    expectReply(_replay.next(), none);
    EXPECT_TRUE(_replay.hasEnded());
    expectReply(_replay.next(), {{}, Reply::End::Close});

    EXPECT_EQ(replay(lines, false), "");
    expectReply(_replay.next(), {{{microseconds(0), odd.bytes()}}, Reply::End::Close});
}

TEST_F(Recording, ReplaysBytesWithoutARequestWithTheAnswerBeforeThem) {
    const Reply answer{{{microseconds(10), "answer"}}, Reply::End::Open};
    const Reply stray{{{microseconds(1), "late"}}, Reply::End::Close};
    record({exchange(1, 0, "r", answer), exchange(1, 1000, "", stray), exchange(2, 0, "r", answer),
            exchange(2, 3000, "", {})});
    EXPECT_EQ(replay(contents()), "");
    expectReply(_replay.next(),
                {{{microseconds(10), "answer"}, {microseconds(1), "late"}}, Reply::End::Close});
    expectReply(_replay.next(), answer);
    expectReply(_replay.next(), {});
    EXPECT_TRUE(_replay.hasEnded());
}

TEST_F(Recording, RefusesWhatIsNoRecording) {
    const auto line = [](const std::string& piece, const std::string& end = "open") {
        return R"({"time":1,"client":1,"request":"r","complete":true,"answer":[)" + piece +
               R"(],"end":")" + end + "\"}\n";
    };
    const auto wait = [&](const std::string& ms) {
        return line(R"({"after_ms":)" + ms + R"(,"bytes":"x"})");
    };
    const std::string good = header + '\n' + wait("3600000");
    const std::string bad = "line 3 is not a recorded exchange: ";
    EXPECT_EQ(replay(good), "");
    EXPECT_EQ(replay(""), "line 1 is not the header of a recording");
    EXPECT_EQ(replay(wait("1")), "line 1 is not the header of a recording");
    EXPECT_EQ(replay(R"({"format":"azubsim recording"})"), "line 1 has no version");
    EXPECT_EQ(replay(R"({"format":"azubsim recording","version":3})"),
              "it has version 3, but only version 2 can be replayed");
    EXPECT_EQ(replay(header + '\n'), "it contains no exchanges");
    for (const std::string ms : {"-1", "3600001", "1e300"}) {
        EXPECT_EQ(replay(good + wait(ms)), bad + "after_ms is not from 0 to 3600000");
    }
    for (const std::string ms : {"\"1\"", "null"}) {
        EXPECT_PRED_FORMAT2(IsSubstring, "missing or has the wrong type", replay(good + wait(ms)));
    }
    EXPECT_EQ(replay(good + wait("1e999")), bad + "not a JSON object");
    EXPECT_EQ(replay(good + line(R"({"after_ms":1,"bytes":"\u0100"})")),
              bad + "bytes has a character above U+00FF");
    EXPECT_EQ(replay(good + line("", "nonsense")), bad + "end is not open, close or reset");
    EXPECT_EQ(replay(good + line("1")), bad + "after_ms is missing or has the wrong type");
    const std::string deep(100000, '[');
    EXPECT_PRED_FORMAT2(IsSubstring, "line 3", replay(good + deep + '\n' + wait("1")));
    EXPECT_EQ(replay(R"({"format":)" + deep + std::string(deep.size(), ']') + "}"),
              "line 1 is not the header of a recording");
}

TEST_F(Recording, IgnoresALastLineThatWasCutShort) {
    record({exchange(1, 0, "r", whole("first")), exchange(1, 0, "r", whole("second"))});
    const std::string lines = contents();
    EXPECT_EQ(replay(lines.substr(0, lines.size() - 1)), "");
    EXPECT_EQ(replay(lines.substr(0, lines.size() - 2)), "line 3 is unfinished and is left out");
    expectReply(_replay.next(), whole("first"));
    EXPECT_TRUE(_replay.hasEnded());
}

TEST_F(Recording, OverwritesAFileOnlyByForce) {
    std::ofstream(file) << "precious";
    Recorder recorder;
    Trace trace;
    std::string error;
    EXPECT_FALSE(recorder.open(file, false, error));
    EXPECT_FALSE(trace.open(file, false, error));
    EXPECT_EQ(error, "the file exists; --force overwrites it");
    EXPECT_EQ(contents(), "precious");
    EXPECT_TRUE(recorder.add({}));
    EXPECT_TRUE(recorder.open(file, true, error));
    EXPECT_PRED_FORMAT2(IsSubstring, "{\"format\":", contents());
    EXPECT_TRUE(trace.open("/dev/null", false, error));
    EXPECT_FALSE(Recorder().open("/dev/full", false, error));
    EXPECT_EQ(error, "the file cannot be written");
    EXPECT_FALSE(Recorder().open(directory.path() + "/none/file", false, error));
    EXPECT_EQ(error, "No such file or directory");
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

TEST_F(Recording, TraceFollowsTheRulesOfItsFormat) {
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
        const std::string killed = contents();
        EXPECT_TRUE(json::accept(killed + "]"));
    }
    std::map<int, long long> ends;
    std::map<std::string, int> events;
    std::string figures;
    for (const json& event : json::parse(contents())) {
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
