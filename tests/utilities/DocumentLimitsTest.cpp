#include "utilities/xmlserializer/DocumentLimits.h"

#include <gtest/gtest.h>

#include "lipsync/SerializationTraits.h"
#include "tests/support/Frames.h"

using velta::utilities::xmlserializer::detail::answerLimits;
using velta::zub::lipsync::SetAudioDelay;

namespace {

std::string repeated(const std::string& text, std::size_t times) {
    std::string all;
    for (std::size_t i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

// Whether a document whose root has this content is within the limits. It never has an answer.
bool isRead(const std::string& content) {
    SetAudioDelay::Answer answer;
    const auto result =
        velta::zub::lipsync::Serializer().deserialize(tests::frame(content), answer);
    return result.message.rfind("No 'AZUB' root element", 0) == std::string::npos;
}

std::string nested(std::size_t levels) {
    return repeated("<a>", levels - 1) + repeated("</a>", levels - 1);
}

std::string withAttributes(std::size_t count) {
    std::string attributes;
    for (std::size_t i = 0; i < count; ++i) {
        attributes += " a" + std::to_string(i) + "='<'";
    }
    return "<a" + attributes + "/>";
}

} // namespace

TEST(DocumentLimits, AcceptDocumentsUpToTheLimitAndRefuseLargerOnes) {
    EXPECT_TRUE(isRead(nested(answerLimits.nesting)));
    EXPECT_FALSE(isRead(nested(answerLimits.nesting + 1)));
    EXPECT_TRUE(isRead(withAttributes(answerLimits.attributes)));
    EXPECT_FALSE(isRead(withAttributes(answerLimits.attributes + 1)));
    // Recursion this deep would overflow any stack.
    EXPECT_FALSE(isRead(nested(1'000'000)));
}
