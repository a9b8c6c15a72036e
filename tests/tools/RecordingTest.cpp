#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/TemporaryDirectory.h"
#include "tests/tools/Exchanges.h"
#include "tools/azubsim/report/Recorder.h"
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

const std::string header = R"({"format":"azubsim recording","version":2})";

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
        Recorder recorder(file, true);
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
        try {
            return Replay(file, {}).takeNote();
        } catch (const tools::Error& e) {
            const std::string start = "cannot read " + file + ": ";
            const std::string text = e.what();
            return text.substr(0, start.size()) == start ? text.substr(start.size()) : text;
        }
    }

    const tests::TemporaryDirectory directory;
    const std::string file = directory.path() + "/file";
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
    Replay replay(file, {true, false, false});
    expectReply(replay.next(getAudioTs), {});
    EXPECT_PRED_FORMAT2(IsSubstring, "no more answers to GetAudioTs", replay.takeNote());
    expectReply(replay.next(getAudioTs), {{}, true});
    expectReply(replay.next(setMargin), both);
    expectReply(replay.next("other"), stray);
    Replay untimed(file, {});
    expectReply(untimed.next(setMargin),
                {{{microseconds(0), "answer"}, {microseconds(0), "late"}}, true});
}

TEST_F(Recordings, RefusesWhatIsNoRecording) {
    const auto line = [](const std::string& piece, const std::string& end = "open") {
        return R"({"time":1,"client":1,"request":"r","complete":true,"fault":"","engine_ms":1,)" +
               (R"("answer":[)" + piece) + R"(],"end":")" + end + "\"}\n";
    };
    const auto wait = [&](const std::string& ms) {
        return line(R"({"after_ms":)" + ms + R"(,"bytes":"x"})");
    };
    const std::string good = header + '\n' + wait("3600000");
    const std::string bad = "line 3 is not a recorded exchange: ";
    EXPECT_EQ(error(good), "");
    EXPECT_EQ(error(""), "cannot replay " + file + ": it contains no exchanges");
    EXPECT_EQ(error(wait("1")), "line 1 is not the header of a recording");
    EXPECT_EQ(error("{\"format\":\"azubsim recording\"}\n"), "line 1 has no version");
    EXPECT_EQ(error("{\"format\":\"azubsim recording\",\"version\":3}\n"),
              "it has version 3, but only version 2 can be read");
    EXPECT_EQ(error(header + '\n'), "cannot replay " + file + ": it contains no exchanges");
    for (const std::string ms : {"-1", "3600001", "1e300"}) {
        EXPECT_EQ(error(good + wait(ms)), bad + "after_ms is not from 0 to 3600000");
    }
    for (const std::string ms : {"\"1\"", "null", "1e999"}) {
        EXPECT_PRED_FORMAT2(IsSubstring, bad + "[json.exception.", error(good + wait(ms)));
    }
    EXPECT_EQ(error(good + line(R"({"after_ms":1,"bytes":"\u0100"})")),
              bad + "bytes has a character above U+00FF");
    EXPECT_EQ(error(good + line("", "nonsense")), bad + "end is not open or close");
    EXPECT_PRED_FORMAT2(IsSubstring, bad + "[json.exception.", error(good + line("1")));
    const std::string deep(100000, '[');
    EXPECT_PRED_FORMAT2(IsSubstring, "line 3", error(good + deep + '\n' + wait("1")));
    EXPECT_EQ(error(R"({"format":)" + deep + std::string(deep.size(), ']') + "}\n"),
              "line 1 is not the header of a recording");
}

TEST_F(Recordings, IgnoreALastLineThatWasCutShort) {
    record({exchange(1, 0, "r", whole("first\n\n")), exchange(1, 0, "r", whole("second\n\n"))});
    const std::string lines = contents();
    EXPECT_EQ(error(lines), "");
    EXPECT_PRED_FORMAT2(IsSubstring, "is unfinished and is left out",
                        error(lines.substr(0, lines.size() - 1)));
    Replay replay(file, {});
    expectReply(replay.next("r"), {{{microseconds(0), "first\n\n"}}, false});
    expectReply(replay.next("r"), {{}, true});
}

TEST_F(Recordings, AreWrittenOnlyWhereNothingIsLost) {
    const auto failure = [](const std::string& path, bool overwrites) -> std::string {
        try {
            Recorder(path, overwrites).add({});
            return "";
        } catch (const tools::Error& e) {
            return e.what();
        }
    };
    std::ofstream(file) << "precious";
    EXPECT_EQ(failure(file, false),
              "cannot record to " + file + ": the file exists; --force overwrites it");
    EXPECT_EQ(contents(), "precious");
    EXPECT_EQ(failure(file, true) + failure("/dev/null", false), "");
    EXPECT_EQ(failure("/dev/full", false), "cannot record to /dev/full: No space left on device");
    EXPECT_PRED_FORMAT2(IsSubstring, "No such file", failure(directory.path() + "/x/file", false));
    // Nobody reads this pipe: that blocks nothing, and is an error only at the end.
    const std::string pipe = directory.path() + "/pipe";
    mkfifo(pipe.c_str(), 0600);
    EXPECT_EQ(failure(pipe, false), "");
    Recorder recorder(pipe, false);
    for (int i = 0; i < 1000; ++i) {
        recorder.add(exchange(1, 0, allBytes(), {}));
    }
    EXPECT_THROW(recorder.finish(), tools::Error);
}

} // namespace
