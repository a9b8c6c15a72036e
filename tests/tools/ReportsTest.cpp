#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <numeric>
#include <sstream>

#include "tests/support/Frames.h"
#include "tests/tools/Engine.h"
#include "tools/azubsim/engine/AudioEngine.h"
#include "tools/azubsim/protocol/Names.h"
#include "tools/azubsim/report/Recording.h"
#include "tools/azubsim/report/Replay.h"
#include "tools/azubsim/report/Reports.h"

namespace {

using namespace azubsim;
using std::chrono::microseconds;
using namespace tests;

const std::string getAudioTs = frame("<GetAudioTs_Request />");
const std::string setMargin = frame("<SetAudioDelay_Request>40</SetAudioDelay_Request>");

// An exchange at a number of microseconds after a fixed time.
Exchange exchange(int client, long long time, const std::string& request, const Reply& reply,
                  const std::string& fault = "", int engineTook = 113) {
    const tools::Time start(1700000000123000);
    return {client, start + microseconds(time), request, true, reply, 0, fault,
            "",     microseconds(engineTook)};
}

Reply whole(const std::string& document) {
    return {{{microseconds(113), document}}, false};
}

std::string allBytes() {
    std::string all(256, '\0');
    std::iota(all.begin(), all.end(), '\0');
    return all;
}

// Each piece after its wait, and what then happens.
std::string shown(const Reply& reply) {
    std::string text;
    for (const Reply::Piece& piece : reply.pieces) {
        text += std::to_string(piece.wait.count()) + ' ' + piece.bytes + ' ';
    }
    return text + (reply.closes ? "closed" : "open");
}

std::string shown(const Exchange& exchange) {
    std::ostringstream text;
    text << exchange.client << ' ' << exchange.time.count() << ' ' << exchange.request << ' '
         << exchange.isComplete << ' ' << shown(exchange.reply) << ' ' << exchange.leftOut << ' '
         << exchange.fault << ' ' << exchange.said << ' ' << exchange.engineTook.count();
    return text.str();
}

void record(const std::string& file, const std::vector<Exchange>& exchanges) {
    Recorder recorder(file);
    for (const Exchange& exchange : exchanges) {
        recorder.add(exchange);
    }
}

using ReportsTest = EngineTest;

TEST_F(ReportsTest, KeepAllOfAnExchange) {
    const Reply odd{{{microseconds(1), allBytes()}, {microseconds(1500001), "\xC3\xA9\n\n"}}, true};
    Exchange first = exchange(1, 0, allBytes(), odd, "zero");
    first.said = allBytes();
    first.leftOut = 3;
    first.isComplete = false;
    Exchange late = exchange(2, 1, "r", {{{std::chrono::hours(2), "x"}}, false});
    late.engineTook = std::chrono::hours(2);
    record(file, {first, late});
    late.reply.pieces[0].wait = late.engineTook = std::chrono::hours(1);
    Recording recording(file);
    EXPECT_EQ(shown(recording.next().value()), shown(first));
    EXPECT_EQ(shown(recording.next().value()), shown(late));
    EXPECT_FALSE(recording.next());
    std::ifstream stream(file);
    EXPECT_IN(R"("utc":"2023-11-14T22:13:20.123000Z","client":1,)",
              std::string(std::istreambuf_iterator<char>(stream), {}));
}

TEST_F(ReportsTest, GiveWhatClientsGotToEachCommandAgain) {
    const Reply stray{{{microseconds(1), "late"}}, true};
    record(file, {exchange(1, 0, setMargin, whole("answer")), exchange(2, 0, getAudioTs, {}),
                  exchange(1, 1000, "", stray), exchange(2, 0, "bad", stray)});
    std::string told;
    const auto tell = [&](const std::string& text) { told = text; };
    Replay timed(file, {true, false, false}, tell);
    EXPECT_EQ(shown(timed.next(getAudioTs)), "open");
    EXPECT_IN("no more answers to GetAudioTs", told);
    EXPECT_EQ(shown(timed.next(getAudioTs)), "closed");
    EXPECT_EQ(shown(timed.next(setMargin)), "113 answer 1 late closed");
    EXPECT_EQ(shown(timed.next("other")), "1 late closed");
    EXPECT_EQ(shown(Replay(file, {}, tell).next(setMargin)), "0 answer 0 late closed");
}

TEST_F(ReportsTest, AreRefusedIfTheyAreNone) {
    const auto line = [](const std::string& piece, const std::string& closes = "false") {
        return R"({"time":1,"client":1,"request":"r","complete":true,"fault":"","engine_ms":1,)" +
               (R"("said":"","left_out":0,"answer":[)" + piece) + "],\"closes\":" + closes + "}\n";
    };
    const auto wait = [&](const std::string& ms) {
        return line(R"({"after_ms":)" + ms + R"(,"bytes":"x"})");
    };
    const auto expectError = [&](const std::string& lines, const std::string& error) {
        std::ofstream(file) << lines;
        expectFailure(AZUBSIM, "replay " + file + at, 1, "cannot " + error);
    };
    const std::string header = "{\"format\":\"azubsim recording\",\"version\":3}\n";
    const std::string good = header + wait("3600000");
    const std::string bad = "read " + file + ": line 3: ";
    for (const std::string& empty : {std::string(), header}) {
        expectError(empty, "replay " + file + ": it contains no exchanges\n");
    }
    expectError("{\"format\":\"azubsim recording\",\"version\":2}\n",
                "read " + file + ": line 1: it is not the header of a recording of version 3\n");
    for (const std::string ms : {"-1", "3600001", "1e300"}) {
        expectError(good + wait(ms), bad + "after_ms is not from 0 to 3600000\n");
    }
    for (const std::string& wrong : {wait("\"1\""), wait("null"), wait("1e999"), line("1"),
                                     line("", "0"), std::string(100000, '[')}) {
        expectError(good + wrong + '\n', bad + "[json.exception.");
    }
    expectError(good + line(R"({"after_ms":1,"bytes":"\u0100"})"),
                bad + "bytes has a character above U+00FF\n");
}

TEST_F(ReportsTest, BecomeTracesWhoseSlicesDoNotOverlap) {
    const auto answer = [](const std::string& code, const std::string& message) {
        return timestampsFrame("0", "2147483648", "9", "62", code, message);
    };
    Exchange slow = exchange(1, 0, getAudioTs, whole(answer("1000", "\xFF")), "delay 1");
    slow.reply.pieces[0].wait = microseconds(900);
    record(file, {slow, exchange(1, 100, setMargin, whole(delayFrame("1000"))),
                  exchange(2, 50, getAudioTs, whole(answer("1003", "no call"))),
                  exchange(1, 600, allBytes(), {{}, true}, allBytes())});
    const std::string trace = run(AZUBSIM, "trace " + file);
    EXPECT_EQ(nlohmann::json::parse(trace).size(), 12U);
    const char* const event =
        R"x("ph":"(.)","name":"([^"]+)","pid":1,"tid":(.),"ts":1700000000([0-9]+))x"
        R"x(,(?:"dur":([0-9]+)|"s":"(t)|"args":\{"ms":([^}]+)|"args":\{"name":"([^"]+)))x";
    std::string events;
    for (const std::string& part : found(trace, event, {1, 2, 3, 4, 5, 6, 7, 8})) {
        events += part.empty() ? "" : part + ' ';
    }
    EXPECT_EQ(
        events,
        "M thread_name 1 123000 client 1 X GetAudioTs 1 123000 900 "
        "C audio latency 1 123900 500.0 C jitter depth 1 123900 62 i delay 1 1 123000 t "
        "X SetAudioDelay 1 123900 0 C margin 1 123900 40 "
        "M thread_name 2 123050 client 2 X GetAudioTs 2 123050 113 X bad request 1 123900 0 ");
    EXPECT_IN("\"message\":\"no call\"", trace);
}

TEST(AudioEngine, AnswersEveryCommand) {
    AudioEngine engine;
    const auto request = [](const std::string& command) {
        return parseRequest(frame('<' + command + "_Request>40</" + command + "_Request>"));
    };
    for (const char* const command : names::commands) {
        EXPECT_TRUE(engine.answer(request(command), {})) << command;
    }
}

TEST(ExchangeLine, TellsWhatHappened) {
    setenv("TZ", "UTC0", 1);
    tzset();
    const auto expect = [](const Exchange& exchange, const std::string& line) {
        EXPECT_EQ(exchangeLine(exchange), "22:13:20.123 #2    " + line);
    };
    // Rendering is half a second after capture, or before it.
    const std::string good = timestampsFrame("0", "2147483648", "+9", "62");
    expect(exchange(2, 0, getAudioTs, whole(good)),
           "GetAudioTs        ok   latency 500.0 jitter  62    0.113 ms");
    expect(exchange(2, 0, getAudioTs, whole(timestampsFrame("0x80000000", "0", "9", "62"))),
           "GetAudioTs        ok   latency -500.0 jitter  62   0.113 ms");
    expect(exchange(2, 0, setMargin, whole(delayFrame("1000"))),
           "SetAudioDelay 40  ok   margin 40                   0.113 ms");
    expect(exchange(2, 0, setMargin, whole(delayFrame("1003", "no\n\x1B[2J\xE2\x80\xAE call")),
                    "error 7"),
           R"(SetAudioDelay 40  1003 "no\n\x1b[2J\xe2\x80\xae call"   0.113 ms  fault: error 7)");
    // A command that this program does not know.
    const std::string other = frame("<New_Request />");
    expect(exchange(2, 0, other,
                    whole(frame("<New_Answer>" + resultElement("1000", "") + "</New_Answer>"))),
           "New               ok                               0.113 ms");
    expect(exchange(2, 0, other, whole(good)),
           "New               answer to another command        0.113 ms");
    expect(exchange(2, 0, setMargin, whole("<x/>\n\n")),
           "SetAudioDelay 40  invalid answer (4 bytes) \"root element is 'x', expected 'AZUB'\""
           "   0.113 ms");

    EXPECT_IN("invalid answer (2 bytes) \"not XML: ",
              exchangeLine(exchange(2, 0, other, whole("<x\n\n"))));

    Exchange silent = exchange(2, 0, getAudioTs, {{}, true}, "", 0);
    expect(silent, "GetAudioTs        no answer, closed");
    silent.fault = "close-before";
    silent.said = good;
    expect(silent,
           "GetAudioTs        no answer, closed               fault: close-before  "
           "engine: ok   latency 500.0 jitter  62");
    const Reply stray{{{noWait, std::string(17, 'x')}}, false};
    expect(exchange(2, 0, "", stray, "", 0), "no request (17 bytes)");
    expect(exchange(2, 0, setMargin, stray, "", 0),
           "SetAudioDelay 40  unfinished answer (17 bytes)");
    expect(
        exchange(2, 0, setMargin, {{{noWait, delayFrame("1000") + "extra"}}, true}),
        "SetAudioDelay 40  ok   margin 40                   0.113 ms  then 5 more bytes, closed");
}

} // namespace
