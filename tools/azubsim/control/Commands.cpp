#include "tools/azubsim/control/Commands.h"

#include <algorithm>

#include "tools/common/Error.h"
#include "tools/common/Lines.h"
#include "tools/common/Text.h"

namespace azubsim {

using tools::Error;

Commands::Commands() {
    add(Command::plain("help", "list the commands", [this] { return table() + _arguments; }));
    add(Command::plain("status", "print the settings, the files and what was counted", [this] {
        std::string text;
        for (const Command::Action& lines : _status) {
            text += lines();
        }
        return text;
    }));
}

Command::Action Commands::parse(const std::string& line) const {
    const tools::Words words(line);
    const auto command =
        std::find_if(_commands.begin(), _commands.end(),
                     [&](const Command& candidate) { return words.first == candidate.name; });
    const std::string invalid =
        "invalid command: " + words.first + (words.rest.empty() ? "" : ' ' + words.rest);
    if (command == _commands.end()) {
        throw Error(invalid);
    }
    try {
        if (words.rest.empty() != command->argument.empty()) {
            throw Error(words.rest.empty() ? "needs an argument: " + command->argument
                                           : "takes no argument");
        }
        return command->parse(words.rest);
    } catch (const Error& e) {
        throw Error(invalid + ": " + e.what());
    }
}

std::string Commands::table() const {
    std::string table;
    for (const Command& command : _commands) {
        const std::string usage = command.name + ' ' + command.argument;
        table += tools::printed("  %-22s%s\n", usage.c_str(), command.effect.c_str());
    }
    return table;
}

} // namespace azubsim
