#include "utilities/xmlserializer/DocumentLimits.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <string>

#include "lipsync/SerializationTraits.h"
#include "tests/support/Frames.h"

using velta::utilities::xmlserializer::detail::answerLimits;
using velta::utilities::xmlserializer::detail::isWithin;
using velta::utilities::xmlserializer::detail::textPadding;
using velta::zub::lipsync::Serializer;
using velta::zub::lipsync::SetAudioDelay;

namespace {

std::string repeated(const std::string& text, std::size_t times) {
    std::string all;
    for (std::size_t i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

std::string read(const std::string& text) {
    SetAudioDelay::Answer answer;
    return Serializer().deserialize(text, answer).format();
}

std::string nested(std::size_t levels) {
    return tests::frame(repeated("<a>", levels - 1) + repeated("</a>", levels - 1));
}

std::string withAttributes(std::size_t count) {
    std::string attributes;
    for (std::size_t i = 0; i < count; ++i) {
        attributes += " a" + std::to_string(i) + "='<'";
    }
    return tests::frame("<a" + attributes + "/>");
}

const std::string noRoot = "Conversion failed (Code 71): No 'AZUB' root element found in xml data.";
const std::string wrongElement =
    "Wrong XML node (Code 68): Trying to deserialize the wrong element.Found \"a\" expected "
    "SetAudioDelay_Answer";

} // namespace

TEST(DocumentLimits, LieBetweenTheLargestDocumentThatIsReadAndTheNextOne) {
    EXPECT_EQ(read(nested(answerLimits.nesting)), wrongElement);
    EXPECT_EQ(read(nested(answerLimits.nesting + 1)), noRoot);
    EXPECT_EQ(read(withAttributes(answerLimits.attributes)), wrongElement);
    EXPECT_EQ(read(withAttributes(answerLimits.attributes + 1)), noRoot);
}

TEST(DocumentLimits, NoDepthExhaustsASmallStack) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 1 << 20);
    pthread_t thread;
    pthread_create(
        &thread, &attributes,
        [](void*) -> void* {
            EXPECT_EQ(read(nested(100'000)), noRoot);
            EXPECT_EQ(read(repeated("<a b='", 1000) + repeated("<a>", 100'000)), noRoot);
            EXPECT_EQ(read(nested(answerLimits.nesting)), wrongElement);
            return nullptr;
        },
        nullptr);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

TEST(DocumentLimits, AreNotReachedByWhatHoldsNoElements) {
    const std::string tags = repeated("<a b='c'>", 2000);
    for (const std::string& shallow :
         {"<!--" + tags + "--><a/>", "<![CDATA[" + tags + "]]><a/>", "<a b=\"" + tags + "\"/>",
          "<a>" + repeated("<b/>text<b></b>", 1000) + "</a>",
          "<a/><!" + repeated("<a ", 2000) + ">", "<a>" + repeated("&lt;a&gt;", 1000) + "</a>",
          "<a/>" + repeated("<1>", 1000)}) {
        EXPECT_EQ(read(tests::frame(shallow)), wrongElement) << shallow.substr(0, 20);
    }
    EXPECT_EQ(read("<?xml " + repeated("<a ", 2000) + "?><AZUB version='0.1.0'><a/></AZUB>"),
              wrongElement);
}

TEST(DocumentLimits, CountWhatTinyXmlReads) {
    const struct {
        std::string text;
        std::size_t nesting;
    } documents[] = {
        {"", 0},
        {"text<a>", 0},
        {"<a><b/></a><c><d><e></e></d></c>", 3},
        {"<a/><b><c", 2},
        {"<a><b></a><c><d>", 2},
        {"<a><b></b x><c>", 2},
        {"<a b='>' c='/>' d=\"'>\"><b>", 2},
        {"<a b=c'><b><c>", 1},
        {"<a><!-- </a> --><b><!-- --></b></a>", 2},
        {"<a><!-- -- ><b>", 1},
        {"<a><![CDATA[</a>]]><b></b></a>", 2},
        {"<a><?xml <b> ?><b></b></a>", 2},
        {"<a><? <b>?><c><d>", 3},
        {"<a>&#xZ;<b>", 1},
        // Only in UTF-8 does a lead byte take what follows it, be that a tag.
        {"<a>\xF0<b><c></c></b></a>", 3},
        {"<?xml?><a>\xF0<b><c></c></b></a>", 2},
        {"\xEF\xBB\xBF<a>\xF0<b><c></c></b></a>", 2},
        {"<?xml encoding='&#85;TF8'?><a>\xF0<b><c></c></b></a>", 2},
        {"<?xml encoding='latin'?><?xml?><a>\xF0<b><c></c></b></a>", 3},
        {"\xEF\xBB\xBF<\xEF\xBB\xBF"
         "a><b></a><c>",
         2},
        {"\xEF\xBB\xBF<a>\xF0", 1},
    };
    for (const auto& document : documents) {
        const std::string padded = document.text + std::string(textPadding, '\0');
        EXPECT_TRUE(isWithin({document.nesting, 9}, padded)) << document.text;
        EXPECT_TRUE(document.nesting == 0 || !isWithin({document.nesting - 1, 9}, padded))
            << document.text;
    }
}
