#include "tools/azubsim/control/Command.h"

#include <algorithm>
#include <utility>

#include "tools/common/Error.h"
#include "tools/common/Number.h"

namespace azubsim {

namespace {

using tools::Error;

double parseNumber(const std::string& text, const std::string& argument,
                   const Command::Range& range) {
    const auto number = tools::parseNumber(text);
    if (number && *number >= range.smallest && *number <= range.largest &&
        (!range.isWhole || text.find('.') == std::string::npos)) {
        return *number;
    }
    const std::size_t bar = argument.find('|');
    throw Error(argument.substr(0, bar) + " must be a " +
                (range.isWhole ? "whole number" : "number") + " from " +
                tools::formatNumber(range.smallest) + " to " + tools::formatNumber(range.largest) +
                (bar == std::string::npos ? "" : " or " + argument.substr(bar + 1)));
}

} // namespace

Command Command::plain(const std::string& name, const std::string& effect, Action carryOut) {
    return {name, "", effect,
            [carryOut = std::move(carryOut)](const std::string&) { return carryOut; }};
}

Command Command::onOff(const std::string& name, const std::string& effect,
                       const std::function<void(bool)>& set) {
    const auto check = [](const std::string& word) {
        if (word != "on" && word != "off") {
            throw Error("must be on or off");
        }
    };
    return text(name, "on|off", effect, check,
                [set](const std::string& word) { set(word == "on"); });
}

Command Command::number(const std::string& name, const std::string& argument,
                        const std::string& effect, Range range,
                        const std::function<void(std::optional<double>)>& set) {
    const std::string word = argument.substr(std::min(argument.find('|'), argument.size()));
    const auto parse = [=](const std::string& text) -> Action {
        std::optional<double> number;
        if (word.empty() || text != word.substr(1)) {
            number = parseNumber(text, argument, range);
        }
        return [=] {
            set(number);
            return name + ' ' + text + (number ? range.unit : "");
        };
    };
    return {name, argument, effect, parse};
}

Command Command::text(const std::string& name, const std::string& argument,
                      const std::string& effect,
                      const std::function<void(const std::string&)>& check,
                      const std::function<void(const std::string&)>& set) {
    const auto parse = [=](const std::string& text) -> Action {
        check(text);
        return [=] {
            set(text);
            return name + ' ' + text;
        };
    };
    return {name, argument, effect, parse};
}

} // namespace azubsim
