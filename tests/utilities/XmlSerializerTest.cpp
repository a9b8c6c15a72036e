#include "utilities/xmlserializer/XmlSerializer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>

#include "lipsync/SerializationTraits.h"
#include "tests/support/Files.h"
#include "tests/support/Frames.h"
#include "utilities/xmlserializer/DocumentLimits.h"

namespace {

using namespace velta::utilities::xmlserializer::detail;
using namespace velta::zub::lipsync;

// The verdict, or "by tree". The fuzzer checks that both ways give the same answer.
std::string readPlain(std::string text, const std::string& version = "0.1.0") {
    text.resize(text.size() - 2);
    GetAudioTs::Answer answer;
    const bool isRead =
        readPlainDocument<SerializationTraitGetAudioTsAnswer>(text, "AZUB", version, answer);
    EXPECT_EQ(answer.timestamps.audioCaptureTimestamp, isRead ? 1UL : 0UL);
    return isRead ? answer.result.format() : "by tree";
}

std::string withMessage(const std::string& message, const std::string& code = "1002") {
    return tests::timestampsFrame("1", "2", "3", "4", code, message);
}

std::string repeated(const std::string& text, std::size_t times) {
    std::string all;
    for (; times > 0; --times) {
        all += text;
    }
    return all;
}

} // namespace

TEST(XmlSerializer, ReadsWhatItWrites) {
    for (const std::string message : {"", "a < b\n\n", "plain"}) {
        GetAudioTs::Answer written;
        written.timestamps.jbmCurrentDepth = 60;
        written.result = velta::zub::cmdfrmwrk::Command::ResultCode::BadState;
        written.result.message = message;
        std::string text = "left over";
        EXPECT_EQ(Serializer().serialize(written, text).format(), "Success");
        EXPECT_EQ(text.find('\n'), std::string::npos);
        GetAudioTs::Answer read;
        EXPECT_EQ(Serializer().deserialize(text, read).format(), "Success");
        EXPECT_EQ(read.timestamps.jbmCurrentDepth, 60UL);
        EXPECT_EQ(read.result.format(), written.result.format());
    }
}

TEST(PlainReader, ReadsOnlyWhatTheEnginePrints) {
    EXPECT_EQ(readPlain(withMessage("")), "Invalid parameter (Code 1002)");
    EXPECT_EQ(readPlain(withMessage(" ~ b.", "0x3eb")), "Bad state (Code 1003):  ~ b.");
    for (const char* const message : {"  ", "&amp;", "a\nb", "\x7f", "a<!-- -->", "'", "\"", ">"}) {
        EXPECT_EQ(readPlain(withMessage(message)), "by tree") << message;
    }
    const char* const changes[][2] = {{"<Message />", "<Message></Message>"},
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

TEST(DocumentLimits, AcceptDocumentsUpToTheLimitAndRefuseLargerOnes) {
    // A document with this content in its root never has an answer.
    const auto isRead = [](const std::string& content) {
        SetAudioDelay::Answer answer;
        const auto result = Serializer().deserialize(tests::frame(content), answer);
        return result.message.rfind("No 'AZUB' root element", 0) == std::string::npos;
    };
    const auto isNestedRead = [&](std::size_t levels) {
        return isRead(repeated("<a>", levels - 1) + repeated("</a>", levels - 1));
    };
    EXPECT_TRUE(isNestedRead(answerLimits.nesting));
    EXPECT_FALSE(isNestedRead(answerLimits.nesting + 1));
    // Recursion this deep would overflow any stack.
    EXPECT_FALSE(isNestedRead(1'000'000));
    const std::size_t most = answerLimits.attributes;
    EXPECT_TRUE(isRead("<a" + repeated(" b='<'", most) + "/>"));
    EXPECT_FALSE(isRead("<a" + repeated(" b='<'", most + 1) + "/>"));
}

TEST(Messages, AreDocumented) {
    std::ifstream file(tests::sourceFile("docs/protocol.md"));
    const std::string page(std::istreambuf_iterator<char>(file), {});
    velta::utilities::visitAll(MessageTraits{}, [&](auto trait) {
        EXPECT_NE(page.find(std::string("`") + trait.tag + '`'), std::string::npos) << trait.tag;
        return true;
    });
}
