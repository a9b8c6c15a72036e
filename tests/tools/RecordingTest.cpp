#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/TemporaryDirectory.h"
#include "tests/tools/Exchanges.h"
#include "tools/azubsim/report/Recording.h"
#include "tools/azubsim/report/Replay.h"
#include "tools/common/Error.h"

namespace {

using namespace azubsim;
using std::chrono::microseconds;
using testing::IsSubstring;
using tests::allBytes;
using tests::exchange;
using tests::getAudioTs;
using tests::setMargin;
using tests::whole;

const std::string header = R"({"format":"azubsim recording","version":3})";

void expectReply(const Reply& reply, const Reply& expected) {
    ASSERT_EQ(reply.pieces.size(), expected.pieces.size());
    for (std::size_t i = 0; i < reply.pieces.size(); ++i) {
        EXPECT_EQ(reply.pieces[i].bytes, expected.pieces[i].bytes);
        EXPECT_EQ(reply.pieces[i].wait, expected.pieces[i].wait);
    }
    EXPECT_EQ(reply.closes, expected.closes);
}

class Recordings : public testing::Test {
protected:
    void record(const std::vector<Exchange>& exchanges) const {
        std::filesystem::remove(file);
        Recorder recorder(file);
        for (const Exchange& exchange : exchanges) {
            recorder.add(exchange);
        }
    }

    std::string contents() const {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    // What is wrong with a file of these lines; nothing if it can be replayed.
    std::string error(const std::string& lines) const {
        std::ofstream(file, std::ios::binary) << lines;
        std::string note;
        try {
            Replay(file, {}, [&](const std::string& text) { note = text; });
            return note;
        } catch (const tools::Error& e) {
            const std::string start = "cannot read " + file + ": ";
            const std::string text = e.what();
            return text.substr(0, start.size()) == start ? text.substr(start.size()) : text;
        }
    }

    Replay replay(Replay::Rules rules) {
        return Replay(file, rules, [&](const std::string& text) { told = text; });
    }

    const tests::TemporaryDirectory directory;
    const std::string file = directory.path() + "/file";
    std::string told; // By a replay.
};

TEST_F(Recordings, KeepsAllOfAnExchange) {
    const Reply odd{{{microseconds(1), allBytes()}, {microseconds(1500001), "\xC3\xA9\n\n"}}, true};
    const Reply late{{{std::chrono::hours(2), "x"}}, false};
    Exchange first = exchange(1, 0, allBytes(), odd, "zero");
    first.said = allBytes();
    first.leftOut = 3;
    first.isComplete = false;
    record({first, exchange(2, 1, "r", late)});
    EXPECT_PRED_FORMAT2(IsSubstring, R"("utc":"2023-11-14T22:13:20.123000Z","client":1,)",
                        contents());
    Recording recording(file);
    const Exchange read = recording.next().value();
    expectReply(read.reply, odd);
    EXPECT_EQ(read.time, first.time);
    EXPECT_EQ(read.request + read.said + read.fault, first.request + first.said + first.fault);
    EXPECT_EQ(read.leftOut, 3U);
    EXPECT_EQ(read.engineTook, first.engineTook);
    EXPECT_FALSE(read.isComplete);
    const Exchange second = recording.next().value();
    expectReply(second.reply, {{{std::chrono::hours(1), "x"}}, false});
    EXPECT_EQ(second.time, first.time + microseconds(1));
    EXPECT_FALSE(recording.next());
}

TEST_F(Recordings, ReplayWhatClientsGotToEachCommand) {
    const Reply answer{{{microseconds(10), "answer"}}, false};
    const Reply stray{{{microseconds(1), "late"}}, true};
    record({exchange(1, 0, setMargin, answer), exchange(2, 0, getAudioTs, {}),
            exchange(1, 1000, "", stray), exchange(2, 0, "bad", stray)});
    const Reply both{{{microseconds(10), "answer"}, {microseconds(1), "late"}}, true};
    Replay timed = replay({true, false, false});
    expectReply(timed.next(getAudioTs), {});
    EXPECT_PRED_FORMAT2(IsSubstring, "no more answers to GetAudioTs", told);
    expectReply(timed.next(getAudioTs), {{}, true});
    expectReply(timed.next(setMargin), both);
    expectReply(timed.next("other"), stray);
    Replay untimed = replay({});
    expectReply(untimed.next(setMargin),
                {{{microseconds(0), "answer"}, {microseconds(0), "late"}}, true});
}

TEST_F(Recordings, RefusesWhatIsNoRecording) {
    const auto line = [](const std::string& piece, const std::string& closes = "false") {
        return R"({"time":1,"client":1,"request":"r","complete":true,"fault":"","engine_ms":1,)" +
               (R"("said":"","left_out":0,"answer":[)" + piece) + "],\"closes\":" + closes + "}\n";
    };
    const auto wait = [&](const std::string& ms) {
        return line(R"({"after_ms":)" + ms + R"(,"bytes":"x"})");
    };
    const std::string good = header + '\n' + wait("3600000");
    const std::string bad = "line 3: ";
    const std::string noHeader = "line 1: it is not the header of a recording of version 3";
    const std::string deep(100000, '[');
    EXPECT_EQ(error(good), "");
    EXPECT_EQ(error(""), "cannot replay " + file + ": it contains no exchanges");
    EXPECT_EQ(error(header + '\n'), "cannot replay " + file + ": it contains no exchanges");
    EXPECT_EQ(error(wait("1")), noHeader);
    EXPECT_EQ(error("{\"format\":\"azubsim recording\",\"version\":2}\n"), noHeader);
    for (const std::string ms : {"-1", "3600001", "1e300"}) {
        EXPECT_EQ(error(good + wait(ms)), bad + "after_ms is not from 0 to 3600000");
    }
    for (const std::string& wrong :
         {wait("\"1\""), wait("null"), wait("1e999"), line("1"), line("", "0"), deep}) {
        EXPECT_PRED_FORMAT2(IsSubstring, bad + "[json.exception.", error(good + wrong + '\n'));
    }
    EXPECT_EQ(error(good + line(R"({"after_ms":1,"bytes":"\u0100"})")),
              bad + "bytes has a character above U+00FF");
}

TEST_F(Recordings, IgnoreALastLineThatWasCutShort) {
    record({exchange(1, 0, "r", whole("first\n\n")), exchange(1, 0, "r", whole("second\n\n"))});
    const std::string lines = contents();
    EXPECT_EQ(error(lines), "");
    EXPECT_PRED_FORMAT2(IsSubstring, "is unfinished and is left out",
                        error(lines.substr(0, lines.size() - 1)));
    Replay untimed = replay({});
    expectReply(untimed.next("r"), {{{microseconds(0), "first\n\n"}}, false});
    expectReply(untimed.next("r"), {{}, true});
}

TEST_F(Recordings, AreWrittenOnlyWhereNothingIsLost) {
    const auto failure = [](const std::string& path) -> std::string {
        try {
            Recorder(path).add(exchange(1, 0, allBytes(), {}));
            return "";
        } catch (const tools::Error& e) {
            return e.what();
        }
    };
    std::ofstream(file) << "precious";
    EXPECT_EQ(failure(file), "cannot record to " + file + ": File exists");
    EXPECT_EQ(contents(), "precious");
    EXPECT_PRED_FORMAT2(IsSubstring, "No such file", failure(directory.path() + "/x/file"));
    // As on a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    const rlimit small{200, usual.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_EQ(failure(file + '2'), "cannot record to " + file + "2: File too large");
    setrlimit(RLIMIT_FSIZE, &usual);
}

} // namespace
