#include "tools/azubsim/control/Commands.h"

#include <algorithm>
#include <utility>

#include "tools/common/Error.h"
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
    addPlain({"help", "", "list the commands"}, [this] { return help(); });
    addPlain({"status", "", "print the settings, the files and what was counted"},
             [this] { return status(); });
}

void Commands::addPlain(const Words& words, Action carryOut) {
    const auto parse = [carryOut = std::move(carryOut)](const std::string&) { return carryOut; };
    _commands.push_back({words, parse, nullptr});
}

void Commands::addText(const Words& words,
                       const std::function<std::function<void()>(const std::string&)>& parse) {
    const auto value = std::make_shared<std::string>(words.initial);
    const auto parseBoth = [=, name = std::string(words.name)](const std::string& text) -> Action {
        return [=, change = parse(text)] {
            change();
            *value = text;
            return name + ' ' + text;
        };
    };
    _commands.push_back({words, parseBoth, value});
}

void Commands::addOnOff(const Words& words, const std::function<void(bool)>& set) {
    addText(words, [set](const std::string& word) {
        require(word == "on" || word == "off", "must be on or off");
        return [=] { set(word == "on"); };
    });
}

void Commands::addNumber(const Words& words, const Range& range,
                         const std::function<void(std::optional<double>)>& set) {
    const std::string argument = words.argument;
    const std::size_t bar = std::min(argument.find('|'), argument.size());
    const std::string placeholder = argument.substr(0, bar);
    const std::string word = argument.substr(std::min(bar + 1, argument.size()));
    addText(words, [=](const std::string& text) {
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
                     [&](const Command& candidate) { return words.first == candidate.words.name; });
    require(command != _commands.end(), invalid);
    const std::string placeholder = command->words.argument;
    try {
        require(words.rest.empty() == placeholder.empty(),
                words.rest.empty() ? "needs an argument: " + placeholder : "takes no argument");
        return command->parse(words.rest);
    } catch (const Error& e) {
        throw Error(invalid + ": " + e.what());
    }
}

std::string Commands::help() const {
    std::string table;
    for (const Command& command : _commands) {
        const std::string usage = std::string(command.words.name) + ' ' + command.words.argument;
        table += tools::printed("  %-22s%s\n", usage.c_str(), command.words.effect);
    }
    return table + _arguments;
}

std::string Commands::status() const {
    std::string text;
    for (const Command& command : _commands) {
        if (*command.words.initial != '\0') {
            text += std::string(command.words.name) + ' ' + *command.value + '\n';
        }
    }
    for (const Action& lines : _status) {
        text += lines();
    }
    return text;
}

} // namespace azubsim
