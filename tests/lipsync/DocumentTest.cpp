#include <gtest/gtest.h>

#include <climits>

#include "lipsync/SerializationTraits.h"
#include "tests/support/Frames.h"

using tests::delayFrame;
using tests::timestampsFrame;
using velta::zub::lipsync::GetAudioTs;
using velta::zub::lipsync::Serializer;
using velta::zub::lipsync::SetAudioDelay;

namespace {

template <typename Request>
std::string written(const Request& request) {
    std::string text = "left over";
    EXPECT_EQ(Serializer().serialize(request, text).format(), "Success");
    return text;
}

} // namespace

TEST(Document, RequestsAreWrittenToTheByte) {
    EXPECT_EQ(written(GetAudioTs::Request{}),
              "<?xml version=\"1.0\" ?><AZUB version=\"0.1.0\"><GetAudioTs_Request /></AZUB>");
    for (const unsigned long delayMs : {0UL, 40UL, ULONG_MAX}) {
        EXPECT_EQ(written(SetAudioDelay::Request{delayMs}),
                  "<?xml version=\"1.0\" ?><AZUB version=\"0.1.0\"><SetAudioDelay_Request>" +
                      std::to_string(delayMs) + "</SetAudioDelay_Request></AZUB>");
    }
}

TEST(Document, TheTimestampsAreTakenOverAsAWholeOrNotAtAll) {
    GetAudioTs::Answer answer;
    EXPECT_TRUE(Serializer().deserialize(timestampsFrame("1", "2", "x", "4"), answer).isFailure());
    EXPECT_EQ(answer.timestamps.audioCaptureTimestamp, 0UL);
}

TEST(Document, WhatWasReadBeforeAFailureIsKept) {
    GetAudioTs::Answer answer;
    EXPECT_TRUE(
        Serializer().deserialize(timestampsFrame("1", "2", "3", "4", "x"), answer).isFailure());
    EXPECT_EQ(answer.timestamps.audioCaptureTimestamp, 1UL);
    EXPECT_EQ(answer.timestamps.jbmCurrentDepth, 4UL);
    EXPECT_EQ(answer.result.format(), "Unknown error (Code 1001)");
}

TEST(Document, AVerdictReplacesTheOldOne) {
    SetAudioDelay::Answer answer;
    answer.result << "old";
    EXPECT_TRUE(Serializer().deserialize(delayFrame("1003", "new"), answer).isSuccess());
    EXPECT_EQ(answer.result.format(), "Bad state (Code 1003): new");
}
