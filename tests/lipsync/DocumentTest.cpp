#include <gtest/gtest.h>

#include <climits>

#include "lipsync/SerializationTraits.h"
#include "tests/support/EngineDouble.h"

using tests::delayAnswer;
using tests::document;
using tests::timestampsAnswer;
using velta::zub::lipsync::GetAudioTs;
using velta::zub::lipsync::Serializer;
using velta::zub::lipsync::SetAudioDelay;

namespace {

const std::string goodResult = "<Result><ErrorCode>1000</ErrorCode><Message /></Result>";
const std::string whileReadingResult =
    " (While desserializing \"Result\") (While desserializing \"SetAudioDelay_Answer\")";

template <typename Request>
std::string written(const Request& request) {
    std::string text = "left over";
    EXPECT_EQ(Serializer().serialize(request, text).format(), "Success");
    return text;
}

template <typename Answer>
std::string reading(const std::string& text, Answer& answer) {
    return Serializer().deserialize(text, answer).format();
}

std::string readingDelay(const std::string& text) {
    SetAudioDelay::Answer answer;
    return reading(text, answer);
}

std::string inDelayAnswer(const std::string& content) {
    return document("<SetAudioDelay_Answer>" + content + "</SetAudioDelay_Answer>");
}

// What the verdict of the engine is read as.
std::string verdict(const std::string& text) {
    SetAudioDelay::Answer answer;
    EXPECT_EQ(reading(text, answer), "Success") << text;
    return answer.result.format();
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

TEST(Document, TheEnvelopeIsChecked) {
    const std::string failed = "Conversion failed (Code 71): ";
    const std::string noRoot = failed + "No 'AZUB' root element found in xml data.";
    const std::string content = "<SetAudioDelay_Answer>" + goodResult + "</SetAudioDelay_Answer>";
    const std::string good = "<AZUB version=\"0.1.0\">" + content + "</AZUB>";
    const struct {
        std::string text;
        std::string result;
    } cases[] = {
        {good, "Success"},
        {"\xEF\xBB\xBF<?xml version='1.0' ?>\n<!-- c -->\n" + good, "Success"},
        {"<other /> " + good, "Success"},
        {"<AZUB version='0.1.0'>" + content + "<SetAudioDelay_Answer /></AZUB>", "Success"},
        {"", noRoot},
        {"no xml", noRoot},
        {"<", noRoot},
        {"<azub version=\"0.1.0\" />", noRoot},
        {"<a>" + good + "</a>", noRoot},
        {"<AZUB>" + content + "</AZUB>", failed + "No version found in root node 'AZUB"},
        {"<AZUB Version=\"0.1.0\" />", failed + "No version found in root node 'AZUB"},
        {"<AZUB version=\"0.1\" />", failed + "Version does not match; expect '0.1.0' got '0.1'."},
        {"<AZUB version=\" 0.1.0\" />",
         failed + "Version does not match; expect '0.1.0' got ' 0.1.0'."},
        {"<AZUB version=\"\" />", failed + "Version does not match; expect '0.1.0' got ''."},
        {good + "<x/>", failed + "No command tag found."},
        {"<AZUB version=\"0.1.0\">text</AZUB>", failed + "No content under root element."},
        {"<AZUB version=\"0.1.0\" />", failed + "No content under root element."},
        {document("<GetAudioTs_Answer />"),
         "Wrong XML node (Code 68): Trying to deserialize the wrong element.Found "
         "\"GetAudioTs_Answer\" expected SetAudioDelay_Answer"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(readingDelay(c.text), c.result) << c.text;
    }
}

TEST(Document, VerdictsAreRead) {
    EXPECT_EQ(verdict(delayAnswer("1000")), "Success");
    EXPECT_EQ(verdict(delayAnswer("1003")), "Bad state (Code 1003)");
    EXPECT_EQ(verdict(delayAnswer("-5", "odd")), "Invalid error (Unreachable) (Code -5): odd");
    EXPECT_EQ(verdict(delayAnswer("0x3EB")), "Bad state (Code 1003)");
    EXPECT_EQ(verdict(inDelayAnswer("<x/><Result>t<Message>  two  blanks &amp; &lt; </Message><y/>"
                                    "<!-- c --><ErrorCode>1002</ErrorCode></Result>")),
              "Invalid parameter (Code 1002):   two  blanks & < ");
    EXPECT_EQ(verdict(inDelayAnswer("<Result><ErrorCode><!-- c -->1001</ErrorCode>"
                                    "<Message><![CDATA[<a>]]></Message></Result>")),
              "Unknown error (Code 1001): <a>");
}

TEST(Document, FailuresNameTheElement) {
    const struct {
        std::string content;
        std::string result;
    } cases[] = {
        {"",
         "Child not found (Code 69): No element node \"Result\" found in node "
         "\"SetAudioDelay_Answer\" (While desserializing \"SetAudioDelay_Answer\")"},
        {"<Result><Message /></Result>",
         "Child not found (Code 69): No element node \"ErrorCode\" found in node \"Result\"" +
             whileReadingResult},
        {"<Result><ErrorCode>1000</ErrorCode></Result>",
         "Child not found (Code 69): No element node \"Message\" found in node \"Result\"" +
             whileReadingResult},
        {"<Result><ErrorCode><!-- 1000 --></ErrorCode><Message /></Result>",
         "Child not found (Code 69): Node \"ErrorCode\" does not contain an expected text node "
         "child (While desserializing \"ErrorCode\")" +
             whileReadingResult},
        {"<Result><ErrorCode> 1000</ErrorCode><Message /></Result>",
         "Conversion failed (Code 71): Unable to convert from string \" 1000\". (While "
         "desserializing \"ErrorCode\")" +
             whileReadingResult},
        {"<Result><ErrorCode>1000 </ErrorCode><Message /></Result>",
         "Conversion failed (Code 71): Unable to convert from string \"1000 \". (While "
         "desserializing \"ErrorCode\")" +
             whileReadingResult},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(readingDelay(inDelayAnswer(c.content)), c.result) << c.content;
    }
}

TEST(Document, TimestampsAreReadExactly) {
    GetAudioTs::Answer answer;
    EXPECT_EQ(reading(timestampsAnswer("18446744073709551615", "+5", "0", "0x3C"), answer),
              "Success");
    EXPECT_EQ(answer.timestamps.audioCaptureTimestamp, ULONG_MAX);
    EXPECT_EQ(answer.timestamps.audioRenderingTimestamp, 5UL);
    EXPECT_EQ(answer.timestamps.audioReceivingTimestamp, 0UL);
    EXPECT_EQ(answer.timestamps.jbmCurrentDepth, 60UL);
    EXPECT_TRUE(answer.result.isSuccess());

    for (const std::string text : {"x1", "-5", "18446744073709551616", "1 "}) {
        GetAudioTs::Answer broken;
        EXPECT_EQ(reading(timestampsAnswer("1", "2", text, "4"), broken),
                  "Conversion failed (Code 71): Unable to convert from string \"" + text +
                      "\". (While desserializing \"receiving_timestamp\") (While desserializing "
                      "\"LipSyncNtpTimestamps\") (While desserializing \"GetAudioTs_Answer\")");
        // The record is taken over as a whole or not at all.
        EXPECT_EQ(broken.timestamps.audioCaptureTimestamp, 0UL);
    }
}

TEST(Document, WhatWasReadBeforeAFailureIsKept) {
    GetAudioTs::Answer answer;
    EXPECT_EQ(reading(timestampsAnswer("1", "2", "3", "4", "x"), answer),
              "Conversion failed (Code 71): Unable to convert from string \"x\". (While "
              "desserializing \"ErrorCode\") (While desserializing \"Result\") (While "
              "desserializing \"GetAudioTs_Answer\")");
    EXPECT_EQ(answer.timestamps.audioCaptureTimestamp, 1UL);
    EXPECT_EQ(answer.timestamps.jbmCurrentDepth, 4UL);
    EXPECT_EQ(answer.result.format(), "Unknown error (Code 1001)");
}
