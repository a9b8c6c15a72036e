#include "utilities/serializer/Convertor.h"

#include <gtest/gtest.h>

#include <climits>
#include <optional>

#include "utilities/serializer/CastConvertor.h"

using velta::utilities::serializer::CastConvertor;
using velta::utilities::serializer::Convertor;

namespace {

enum class Number : int {};

template <typename T, typename ConvertorType>
std::optional<T> read(const std::string& text) {
    T value{};
    return ConvertorType::fromString(text, value) ? std::optional<T>(value) : std::nullopt;
}

struct Case {
    const char* text;
    std::optional<unsigned long> asUnsigned;
    std::optional<int> asSigned;
};

constexpr std::nullopt_t none = std::nullopt;

const Case cases[] = {
    {"0", 0, 0},
    {"42", 42, 42},
    {"042", 42, 42},
    {"+5", 5, 5},
    {"-5", none, -5},
    {"-0", none, 0},
    {"0x2A", 42, 42},
    {"0x2a", 42, 42},
    {"0X2A", none, none},
    {"0x", none, none},
    {"+0x2A", none, none},
    {"0x-5", none, none},
    {"0x0x5", none, none},
    {"x1", none, none},
    {"", none, none},
    {"-", none, none},
    {"+", none, none},
    {"1.0", none, none},
    {"1e3", none, none},
    {"42abc", none, none},
    {"1,000", none, none},
    {" 1000", none, none},
    {"1000 ", none, none},
    {"10 00", none, none},
    {"1000\n", none, none},
    {"\t1000", none, none},
    {"1000\r", none, none},
    {"\v1000", none, none},
    {"\f1000", 1000, 1000},
    {"1000\f", none, none},
    {"2147483647", 2147483647, INT_MAX},
    {"2147483648", 2147483648, none},
    {"-2147483648", none, INT_MIN},
    {"-2147483649", none, none},
    {"18446744073709551615", ULONG_MAX, none},
    {"18446744073709551616", none, none},
    {"0xFFFFFFFFFFFFFFFF", ULONG_MAX, none},
    {"0x10000000000000000", none, none},
};

} // namespace

TEST(Convertor, ReadsBareNumbersOnly) {
    for (const Case& c : cases) {
        EXPECT_EQ((read<unsigned long, Convertor<unsigned long>>(c.text)), c.asUnsigned) << c.text;
        const auto number = read<Number, CastConvertor<Number, int>>(c.text);
        EXPECT_EQ(number.has_value(), c.asSigned.has_value()) << c.text;
        EXPECT_EQ(static_cast<int>(number.value_or(Number{})), c.asSigned.value_or(0)) << c.text;
    }
}

TEST(Convertor, LeavesTheValueAloneOnFailure) {
    unsigned long value = 7;
    EXPECT_FALSE(Convertor<unsigned long>::fromString("12x", value));
    EXPECT_EQ(value, 7UL);
}

TEST(Convertor, WritesDecimal) {
    std::string text;
    EXPECT_TRUE(Convertor<unsigned long>::toString(0, text));
    EXPECT_EQ(text, "0");
    EXPECT_TRUE(Convertor<unsigned long>::toString(ULONG_MAX, text));
    EXPECT_EQ(text, "18446744073709551615");
    EXPECT_TRUE((CastConvertor<Number, int>::toString(Number{-5}, text)));
    EXPECT_EQ(text, "-5");
}
