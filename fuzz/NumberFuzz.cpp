// Compares reading and writing of numbers with string streams under the same rules.

#include <locale>
#include <sstream>
#include <string>

#include "cmdfrmwrk/Command.h"
#include "fuzz/Check.h"
#include "utilities/serializer/CastConvertor.h"
#include "utilities/serializer/Convertor.h"

namespace {

using velta::utilities::serializer::CastConvertor;
using velta::utilities::serializer::Convertor;
using velta::zub::cmdfrmwrk::Command;

template <typename T>
bool readByStream(const std::string& text, bool isMinusAllowed, T& value) {
    if (text.find_first_of("\r\n\t\v ") != std::string::npos) {
        return false;
    }
    if (!isMinusAllowed && text.find('-') != std::string::npos) {
        return false;
    }
    std::stringstream stream(text);
    stream.imbue(std::locale::classic());
    if (text.substr(0, 2) == "0x") {
        stream >> std::hex;
    }
    return (stream >> value) && stream.eof();
}

template <typename T>
std::string writtenByStream(T value) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << value;
    return stream.str();
}

template <typename T>
void compare(const std::string& text, bool isMinusAllowed) {
    T value{7};
    T expected{7};
    const bool isNumber = Convertor<T>::fromString(text, value);
    fuzz::check(isNumber == readByStream(text, isMinusAllowed, expected),
                "both accept the same texts");
    fuzz::check(value == (isNumber ? expected : 7), "both read the same number");
    std::string written;
    fuzz::check(Convertor<T>::toString(value, written), "every number can be written");
    fuzz::check(written == writtenByStream(value), "both write the same text");
}

} // namespace

int fuzzNumber(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    compare<unsigned long>(text, false);
    compare<int>(text, true);
    int number = 0;
    Command::ResultCode code{};
    fuzz::check(CastConvertor<Command::ResultCode, int>::fromString(text, code) ==
                        Convertor<int>::fromString(text, number) &&
                    static_cast<int>(code) == number,
                "a code is read as its number");
    std::string written;
    fuzz::check(CastConvertor<Command::ResultCode, int>::toString(code, written) &&
                    written == writtenByStream(number),
                "a code is written as its number");
    return 0;
}
