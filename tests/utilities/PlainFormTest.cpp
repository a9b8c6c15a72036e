// Documents read without a tree, compared with what TinyXML reads.

#include <gtest/gtest.h>

#include "utilities/serializer/Child.h"
#include "utilities/serializer/Convertor.h"
#include "utilities/serializer/NamedTextTrait.h"
#include "utilities/serializer/TextTrait.h"
#include "utilities/xmlserializer/XmlSerializer.h"

namespace {

using namespace velta::utilities::xmlserializer;
using velta::utilities::TypeList;
using velta::utilities::serializer::Child;
using velta::utilities::serializer::Convertor;
using velta::utilities::serializer::NamedTextTrait;
using velta::utilities::serializer::TextTrait;

struct Note {
    std::string text;
};

struct NoteTrait {
    using Type = Note;
    static constexpr const char* tag = "Note";
    static std::string getText(const Note& note) { return note.text; }
    using Children =
        TypeList<Child<TextTrait<std::string, Convertor<std::string>>, &getText, nullptr>>;
};

struct RefusingConvertor {
    static bool toString(int, std::string&) { return false; }
};

struct Refused {};

struct RefusedTrait {
    using Type = Refused;
    static constexpr const char* tag = "Refused";
    static int getNumber(const Refused&) { return 7; }
    using Children = TypeList<Child<TextTrait<int, RefusingConvertor>, &getNumber, nullptr>>;
};

struct Pair {
    unsigned long number = 1;
    std::string text = "old";
    int noChild = 2;
};

struct PairTrait {
    using Type = Pair;
    static constexpr const char* tag = "Pair";
    static constexpr const char* numberTag = "Number";
    static constexpr const char* textTag = "Text";
    static unsigned long getNumber(const Pair& pair) { return pair.number; }
    static void setNumber(Pair& pair, unsigned long number) { pair.number = number; }
    static std::string getText(const Pair& pair) { return pair.text; }
    static void setText(Pair& pair, const std::string& text) { pair.text = text; }
    using Number = NamedTextTrait<unsigned long, &numberTag, false, Convertor<unsigned long>>;
    using Text = NamedTextTrait<std::string, &textTag, true, Convertor<std::string>>;
    using Children =
        TypeList<Child<Number, &getNumber, &setNumber>, TypeList<Child<Text, &getText, &setText>>>;
};

using Serializer = XmlSerializer<TypeList<NoteTrait, TypeList<RefusedTrait, TypeList<PairTrait>>>>;

std::string pairDocument(const std::string& content) {
    return "<?xml version=\"1.0\" ?><Root version=\"1\"><Pair>" + content + "</Pair></Root>";
}

bool isReadPlain(const std::string& document, Pair& pair) {
    return detail::readPlainDocument<PairTrait>(document, "Root", "1", pair);
}

} // namespace

TEST(PlainForm, TextIsEscapedWhenItIsWritten) {
    std::string document;
    EXPECT_TRUE(Serializer("Root", "1").serialize(Note{"a <&> \"b\""}, document).isSuccess());
    EXPECT_EQ(document,
              "<?xml version=\"1.0\" ?><Root version=\"1\"><Note>a &lt;&amp;&gt; "
              "&quot;b&quot;</Note></Root>");
}

TEST(PlainForm, AValueThatCannotBeConvertedIsReported) {
    std::string document = "left over";
    EXPECT_EQ(Serializer("Root", "1").serialize(Refused{}, document).format(),
              "Conversion failed (Code 71): Unable to convert \"7\" to string. "
              "(While serializing \"Refused\")");
    EXPECT_EQ(document, "");
}

TEST(PlainForm, IsReadWithoutATree) {
    Pair pair;
    pair.noChild = 3;
    EXPECT_TRUE(isReadPlain(pairDocument("<Number>42</Number><Text>a b.</Text>"), pair));
    EXPECT_EQ(pair.number, 42UL);
    EXPECT_EQ(pair.text, "a b.");
    EXPECT_EQ(pair.noChild, 3);
    EXPECT_TRUE(isReadPlain(pairDocument("<Number>0x2a</Number><Text />"), pair));
    EXPECT_EQ(pair.text, "");
}

TEST(PlainForm, AVersionWithEntitiesIsLeftToTinyXml) {
    std::string document = pairDocument("<Number>42</Number><Text />");
    document.replace(document.find("\"1\""), 3, "\"a&amp;b\"");
    Pair pair;
    EXPECT_TRUE(Serializer("Root", "a&b").deserialize(document, pair).isSuccess());
    EXPECT_TRUE(Serializer("Root", "a&amp;b").deserialize(document, pair).isFailure());
}

TEST(PlainForm, WhateverElseIsLeftToTinyXmlAndReadsTheSame) {
    struct {
        std::string document;
        const char* text; // null for a failure
    } const cases[] = {
        {pairDocument("<Number>42</Number><Text></Text>"), ""},
        {pairDocument("<Number>42</Number><Text/>"), ""},
        {pairDocument("<Number>42</Number><Text>  </Text>"), ""},
        {pairDocument("<Number>42</Number><Text>a&amp;b</Text>"), "a&b"},
        {pairDocument("<Number>42</Number><Text>a\nb</Text>"), "a\nb"},
        {pairDocument("<Number>42</Number><Text>a<!-- -->b</Text>"), "a"},
        {pairDocument("<Text>a</Text><Number>42</Number>"), "a"},
        {pairDocument("<Number>42</Number><Text>a</Text><More />"), "a"},
        {pairDocument("<Number>42</Number><Text>a</Text>") + "\n", "a"},
        {pairDocument("<Number>42</Number>"), nullptr},
        {pairDocument("<Number></Number><Text>a</Text>"), nullptr},
        {pairDocument("<Number>42 </Number><Text>a</Text>"), nullptr},
        {pairDocument("<Number>42</Number><Text>a</Text>").substr(0, 60), nullptr},
        {"", nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.document);
        Pair pair;
        EXPECT_FALSE(isReadPlain(c.document, pair));
        EXPECT_EQ(pair.number, 1UL);
        EXPECT_EQ(pair.text, "old");
        EXPECT_EQ(Serializer("Root", "1").deserialize(c.document, pair).isSuccess(),
                  c.text != nullptr);
        if (c.text != nullptr) {
            EXPECT_EQ(pair.number, 42UL);
            EXPECT_EQ(pair.text, c.text);
        }
    }
}
