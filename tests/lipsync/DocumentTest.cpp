#include <gtest/gtest.h>

#include <climits>

#include "lipsync/SerializationTraits.h"
#include "tests/support/Frames.h"

using velta::zub::lipsync::GetAudioTs;
using velta::zub::lipsync::Serializer;
using velta::zub::lipsync::SetAudioDelay;

namespace {

template <typename Request>
std::string frame(const Request& request) {
    std::string text = "left over";
    EXPECT_EQ(Serializer().serialize(request, text).format(), "Success");
    return text + "\n\n";
}

} // namespace

TEST(Document, RequestsAreWrittenToTheByte) {
    EXPECT_EQ(frame(GetAudioTs::Request{}), tests::frame("<GetAudioTs_Request />"));
    EXPECT_EQ(frame(SetAudioDelay::Request{}),
              tests::frame("<SetAudioDelay_Request>0</SetAudioDelay_Request>"));
    EXPECT_EQ(frame(SetAudioDelay::Request{ULONG_MAX}),
              tests::frame("<SetAudioDelay_Request>18446744073709551615</SetAudioDelay_Request>"));
}

TEST(Document, AnAnswerKeepsWhatWasReadBeforeAFailure) {
    GetAudioTs::Answer answer;
    EXPECT_TRUE(
        Serializer().deserialize(tests::timestampsFrame("1", "2", "x", "4"), answer).isFailure());
    // The timestamps are taken over as a whole.
    EXPECT_EQ(answer.timestamps.audioCaptureTimestamp, 0UL);
    EXPECT_TRUE(Serializer()
                    .deserialize(tests::timestampsFrame("1", "2", "3", "4", "x"), answer)
                    .isFailure());
    EXPECT_EQ(answer.timestamps.audioCaptureTimestamp, 1UL);
    EXPECT_EQ(answer.timestamps.jbmCurrentDepth, 4UL);
    EXPECT_EQ(answer.result.format(), "Unknown error (Code 1001)");
}

TEST(Document, AVerdictReplacesTheOldOne) {
    SetAudioDelay::Answer answer;
    answer.result << "old";
    EXPECT_TRUE(Serializer().deserialize(tests::delayFrame("1003", "new"), answer).isSuccess());
    EXPECT_EQ(answer.result.format(), "Bad state (Code 1003): new");
}
