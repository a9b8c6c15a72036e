#include "utilities/xmlserializer/Envelope.h"

#include <gtest/gtest.h>

#include <cstring>
#include <utility>

#include "lipsync/SerializationTraits.h"
#include "tests/support/Frames.h"

using velta::utilities::xmlserializer::detail::readPlainDocument;
using velta::zub::lipsync::GetAudioTs;

namespace {

// The verdict, or "by tree". The fuzzer checks that both ways give the same answer.
std::string readPlain(std::string text, const std::string& version = "0.1.0") {
    text.resize(text.size() - 2);
    GetAudioTs::Answer answer;
    using Trait = velta::zub::lipsync::SerializationTraitGetAudioTsAnswer;
    const bool isRead = readPlainDocument<Trait>(text, "AZUB", version, answer);
    EXPECT_EQ(answer.timestamps.audioCaptureTimestamp, isRead ? 1UL : 0UL);
    return isRead ? answer.result.format() : "by tree";
}

std::string withMessage(const std::string& message, const std::string& code = "1002") {
    return tests::timestampsFrame("1", "2", "3", "4", code, message);
}

} // namespace

TEST(PlainReader, ReadsWhatTheEnginePrints) {
    EXPECT_EQ(readPlain(withMessage("")), "Invalid parameter (Code 1002)");
    EXPECT_EQ(readPlain(withMessage(" ~ b.", "0x3eb")), "Bad state (Code 1003):  ~ b.");
}

TEST(PlainReader, LeavesEverythingElseToTinyXml) {
    for (const char* const message : {"  ", "&amp;", "a\nb", "\x7f", "a<!-- -->", "'", "\"", ">"}) {
        EXPECT_EQ(readPlain(withMessage(message)), "by tree") << message;
    }
    const std::pair<const char*, const char*> changes[] = {{"<Message />", "<Message></Message>"},
                                                           {"1002", "1002 "},
                                                           {"</AZUB>", "</AZUB> "},
                                                           {"0.1.0", "&amp;"}};
    for (const auto& [usual, unusual] : changes) {
        std::string text = withMessage("");
        text.replace(text.find(usual), std::strlen(usual), unusual);
        EXPECT_EQ(readPlain(text, "&amp;"), "by tree") << unusual;
        EXPECT_EQ(readPlain(text), "by tree") << unusual;
    }
}
