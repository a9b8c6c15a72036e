#include "utilities/xmlserializer/XmlSerializer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "utilities/serializer/CastConvertor.h"
#include "utilities/serializer/Child.h"

namespace {

using namespace velta::utilities;
using serializer::Child;
using serializer::Convertor;
using serializer::NamedTextTrait;

enum class Mode : std::int32_t { Slow = -2, Unwritable = 9 };

struct Range {
    Mode mode = Mode::Slow;
    unsigned long length = 0;
};

struct Request {
    std::string name;
    Range range;
};

struct ModeConvertor : serializer::CastConvertor<Mode, int> {
    static bool toString(const Mode& mode, std::string& text) {
        return mode != Mode::Unwritable && CastConvertor::toString(mode, text);
    }
};

struct Tags {
    static constexpr const char* mode = "Mode";
    static constexpr const char* length = "Length";
    static constexpr const char* name = "Name";
};

struct RangeTrait {
    using Type = Range;
    static constexpr const char* tag = "Range";
    static Type initialValue() { return {}; }

    static Mode getMode(const Type& range) { return range.mode; }
    static void setMode(Type& range, const Mode& mode) { range.mode = mode; }
    static unsigned long getLength(const Type& range) { return range.length; }
    static void setLength(Type& range, const unsigned long& length) { range.length = length; }

    using ModeTrait = NamedTextTrait<Mode, &Tags::mode, false, ModeConvertor>;
    using LengthTrait =
        NamedTextTrait<unsigned long, &Tags::length, false, Convertor<unsigned long>>;
    using Children = TypeList<Child<ModeTrait, &getMode, &setMode>,
                              TypeList<Child<LengthTrait, &getLength, &setLength>>>;
};

struct RequestTrait {
    using Type = Request;
    static constexpr const char* tag = "Request";

    static std::string getName(const Type& request) { return request.name; }
    static void setName(Type& request, const std::string& name) { request.name = name; }
    static Range getRange(const Type& request) { return request.range; }
    static void setRange(Type& request, const Range& range) { request.range = range; }

    using NameTrait = NamedTextTrait<std::string, &Tags::name, true, Convertor<std::string>>;
    using Children = TypeList<Child<NameTrait, &getName, &setName>,
                              TypeList<Child<RangeTrait, &getRange, &setRange>>>;
};

const xmlserializer::XmlSerializer<TypeList<RequestTrait>> documents("ROOT", "1");

} // namespace

TEST(XmlSerializer, ReadsWhatItWrites) {
    for (const std::string name : {"", "a < b\n\n", "plain"}) {
        std::string text;
        EXPECT_EQ(documents.serialize(Request{name, {Mode::Slow, 5}}, text).format(), "Success");
        EXPECT_EQ(text.substr(text.find("<Range>")),
                  "<Range><Mode>-2</Mode><Length>5</Length></Range></Request></ROOT>");
        EXPECT_EQ(text.find('\n'), std::string::npos);
        Request request{"other", {Mode::Unwritable, 0}};
        EXPECT_EQ(documents.deserialize(text, request).format(), "Success");
        EXPECT_EQ(request.name, name);
        EXPECT_EQ(request.range.mode, Mode::Slow);
        EXPECT_EQ(request.range.length, 5UL);
    }
}

TEST(XmlSerializer, NamesTheElementsAroundAValueThatCannotBeWritten) {
    std::string text = "left over";
    EXPECT_EQ(documents.serialize(Request{"", {Mode::Unwritable, 5}}, text).format(),
              "Conversion failed (Code 71): Unable to convert \"9\" to string. (While serializing "
              "\"Mode\") (While serializing \"Range\") (While serializing \"Request\")");
    EXPECT_EQ(text, "");
}
