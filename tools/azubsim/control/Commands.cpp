#include "tools/azubsim/control/Commands.h"

#include <algorithm>
#include <utility>

#include "tools/common/Error.h"
#include "tools/common/Lines.h"
#include "tools/common/Number.h"
#include "tools/common/Text.h"

namespace azubsim {

namespace {

using tools::Error;
using tools::formatNumber;
using tools::require;

double parseNumber(const std::string& text, const std::string& placeholder,
                   const Commands::Range& range, const std::string& word) {
    const auto number = tools::parseNumber(text);
    require(number && *number >= range.smallest && *number <= range.largest &&
                (!range.isWhole || text.find('.') == std::string::npos),
            placeholder + " must be a " + (range.isWhole ? "whole number" : "number") + " from " +
                formatNumber(range.smallest) + " to " + formatNumber(range.largest) +
                (word.empty() ? "" : " or " + word));
    return *number;
}

} // namespace

Commands::Commands() {
    addPlain("help", "list the commands", [this] { return help(); });
    addPlain("status", "print the settings, the files and what was counted", [this] {
        std::string text;
        for (const Action& lines : _status) {
            text += lines();
        }
        return text;
    });
}

void Commands::addPlain(const std::string& name, const std::string& effect, Action carryOut) {
    _commands.push_back({name, "", effect, [carryOut = std::move(carryOut)](const std::string&) {
                             return carryOut;
                         }});
}

void Commands::addText(const std::string& name, const std::string& argument,
                       const std::string& effect,
                       const std::function<std::function<void()>(const std::string&)>& parse) {
    _commands.push_back({name, argument, effect, [=](const std::string& text) -> Action {
                             return [change = parse(text), answer = name + ' ' + text] {
                                 change();
                                 return answer;
                             };
                         }});
}

void Commands::addOnOff(const std::string& name, const std::string& effect,
                        const std::function<void(bool)>& set) {
    addText(name, "on|off", effect, [set](const std::string& word) {
        require(word == "on" || word == "off", "must be on or off");
        return [=] { set(word == "on"); };
    });
}

void Commands::addNumber(const std::string& name, const std::string& argument,
                         const std::string& effect, const Range& range,
                         const std::function<void(std::optional<double>)>& set) {
    const std::size_t bar = std::min(argument.find('|'), argument.size());
    const std::string placeholder = argument.substr(0, bar);
    const std::string word = argument.substr(std::min(bar + 1, argument.size()));
    addText(name, argument, effect, [=](const std::string& text) {
        std::optional<double> number;
        if (word.empty() || text != word) {
            number = parseNumber(text, placeholder, range, word);
        }
        return [=] { set(number); };
    });
}

Commands::Action Commands::parse(const std::string& line) const {
    const tools::Words words(line);
    const std::string invalid =
        "invalid command: " + words.first + (words.rest.empty() ? "" : ' ' + words.rest);
    const auto command =
        std::find_if(_commands.begin(), _commands.end(),
                     [&](const Command& candidate) { return words.first == candidate.name; });
    require(command != _commands.end(), invalid);
    try {
        require(
            words.rest.empty() == command->argument.empty(),
            words.rest.empty() ? "needs an argument: " + command->argument : "takes no argument");
        return command->parse(words.rest);
    } catch (const Error& e) {
        throw Error(invalid + ": " + e.what());
    }
}

std::string Commands::help() const {
    std::string table;
    for (const Command& command : _commands) {
        const std::string usage = command.name + ' ' + command.argument;
        table += tools::printed("  %-22s%s\n", usage.c_str(), command.effect.c_str());
    }
    return table + _arguments;
}

} // namespace azubsim
