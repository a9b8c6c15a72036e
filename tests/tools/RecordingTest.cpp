#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/TemporaryDirectory.h"
#include "tests/tools/Exchanges.h"
#include "tools/azubsim/Recorder.h"
#include "tools/azubsim/Replay.h"
#include "tools/azubsim/Trace.h"

namespace {

using namespace azubsim;
using std::chrono::microseconds;
using testing::IsSubstring;
using tests::allBytes;
using tests::contents;
using tests::exchange;
using tests::whole;

const std::string header = R"({"format":"azubsim recording","version":2})";

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
    const std::string lines = contents(file);
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
    EXPECT_EQ(replay(contents(file)), "");
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
    const std::string lines = contents(file);
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
    EXPECT_EQ(contents(file), "precious");
    EXPECT_TRUE(recorder.add({}));
    EXPECT_TRUE(recorder.open(file, true, error));
    EXPECT_PRED_FORMAT2(IsSubstring, "{\"format\":", contents(file));
    EXPECT_TRUE(trace.open("/dev/null", false, error));
    EXPECT_FALSE(Recorder().open("/dev/full", false, error));
    EXPECT_EQ(error, "the file cannot be written");
    EXPECT_FALSE(Recorder().open(directory.path() + "/none/file", false, error));
    EXPECT_EQ(error, "No such file or directory");
}

} // namespace
