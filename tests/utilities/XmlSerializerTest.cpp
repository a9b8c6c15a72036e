#include "utilities/xmlserializer/XmlSerializer.h"

#include <gtest/gtest.h>

#include <string>

#include "lipsync/SerializationTraits.h"

using velta::zub::cmdfrmwrk::Command;
using velta::zub::lipsync::GetAudioTs;

TEST(XmlSerializer, ReadsWhatItWrites) {
    const velta::zub::lipsync::Serializer documents;
    for (const std::string message : {"", "a < b\n\n", "plain"}) {
        GetAudioTs::Answer written;
        written.timestamps.jbmCurrentDepth = 60;
        written.result = Command::ResultCode::BadState;
        written.result.message = message;
        std::string text = "left over";
        EXPECT_EQ(documents.serialize(written, text).format(), "Success");
        EXPECT_EQ(text.find('\n'), std::string::npos);
        GetAudioTs::Answer read;
        EXPECT_EQ(documents.deserialize(text, read).format(), "Success");
        EXPECT_EQ(read.timestamps.jbmCurrentDepth, 60UL);
        EXPECT_EQ(read.result.format(), written.result.format());
    }
}
