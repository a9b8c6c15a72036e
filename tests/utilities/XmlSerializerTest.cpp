#include "utilities/xmlserializer/XmlSerializer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

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
    bool isOpen = false;
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

struct YesNo {
    static bool toString(const bool& value, std::string& text) {
        text = value ? "yes" : "no";
        return true;
    }
    static bool fromString(std::string_view text, bool& value) {
        value = text == "yes";
        return value || text == "no";
    }
};

struct Tags {
    static constexpr const char* mode = "Mode";
    static constexpr const char* length = "Length";
    static constexpr const char* isOpen = "IsOpen";
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
    static bool getIsOpen(const Type& range) { return range.isOpen; }
    static void setIsOpen(Type& range, const bool& isOpen) { range.isOpen = isOpen; }

    using ModeTrait = NamedTextTrait<Mode, &Tags::mode, false, ModeConvertor>;
    using LengthTrait =
        NamedTextTrait<unsigned long, &Tags::length, false, Convertor<unsigned long>>;
    using IsOpenTrait = NamedTextTrait<bool, &Tags::isOpen, false, YesNo>;
    using Children = TypeList<Child<ModeTrait, &getMode, &setMode>,
                              TypeList<Child<LengthTrait, &getLength, &setLength>,
                                       TypeList<Child<IsOpenTrait, &getIsOpen, &setIsOpen>>>>;
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
        EXPECT_EQ(documents.serialize(Request{name, {Mode::Slow, 5, true}}, text).format(),
                  "Success");
        EXPECT_EQ(text.substr(text.find("<Range>")),
                  "<Range><Mode>-2</Mode><Length>5</Length><IsOpen>yes</IsOpen></Range></Request></"
                  "ROOT>");
        EXPECT_EQ(text.find('\n'), std::string::npos);
        Request request{"other", {Mode::Unwritable, 0, false}};
        EXPECT_EQ(documents.deserialize(text, request).format(), "Success");
        EXPECT_EQ(request.name, name);
        EXPECT_EQ(request.range.mode, Mode::Slow);
        EXPECT_EQ(request.range.length, 5UL);
        EXPECT_TRUE(request.range.isOpen);
    }
}

TEST(XmlSerializer, NamesTheElementsAroundAValueThatCannotBeWritten) {
    std::string text = "left over";
    EXPECT_EQ(documents.serialize(Request{"", {Mode::Unwritable, 5, false}}, text).format(),
              "Conversion failed (Code 71): Unable to convert \"9\" to string. (While serializing "
              "\"Mode\") (While serializing \"Range\") (While serializing \"Request\")");
    EXPECT_EQ(text, "");
}
