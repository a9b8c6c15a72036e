#include "tools/common/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <string>

#include "tools/common/Error.h"
#include "tools/common/Text.h"

namespace tools {

namespace {

constexpr std::size_t helpColumns = 80;
constexpr std::size_t nameColumns = 24;

void breakLines(CLI::App& app) {
    app.get_formatter()->column_width(nameColumns);
    const std::size_t width = app.get_parent() == nullptr ? helpColumns : helpColumns - nameColumns;
    app.description(wrapped(app.get_description(), width));
    for (CLI::Option* const option : app.get_options()) {
        option->description(wrapped(option->get_description(), helpColumns - nameColumns));
    }
    for (CLI::App* const command : app.get_subcommands([](CLI::App*) { return true; })) {
        breakLines(*command);
    }
}

// The help of a command, with headings that name it.
std::string helpOf(const CLI::App& command) {
    std::string text = command.help(command.get_parent()->get_name());
    const std::size_t size = text.find("\n\n");
    const std::string about =
        CLI::detail::find_and_replace('\n' + text.substr(0, size), "\n", "\n  ");
    text.replace(0, size, "Command " + command.get_name() + ':' + about);
    for (const std::string heading : {"\nOptions:\n", "\nPositionals:\n"}) {
        const std::size_t start = text.find(heading);
        if (start != std::string::npos) {
            text.insert(start + heading.size() - 2, " of " + command.get_name());
        }
    }
    return text;
}

// The help of the tool and of its commands, from which its manual page is made. A paragraph that
// several of them have appears once.
void printAll(const CLI::App& app) {
    std::string all;
    const auto add = [&](const std::string& help) {
        std::size_t start = 0;
        while (start < help.size()) {
            const std::size_t end = std::min(help.find("\n\n", start), help.size() - 1) + 2;
            const std::string paragraph = help.substr(start, end - start);
            all += all.find(paragraph) == std::string::npos ? paragraph : "";
            start = end;
        }
    };
    add(app.help());
    for (const CLI::App* const command :
         app.get_subcommands([](const CLI::App*) { return true; })) {
        add(helpOf(*command));
    }
    std::cout << all;
}

// The words of the parser where they are good, and ours elsewhere.
std::string words(const CLI::App& app, const CLI::ParseError& error) {
    std::string text = error.what();
    const auto is = [&](CLI::ExitCodes code) {
        return error.get_exit_code() == static_cast<int>(code);
    };
    // A misspelt command is also a missing one.
    if (const auto extras = app.remaining(true); !extras.empty()) {
        return "unexpected argument '" + extras.front() + "'";
    }
    if (is(CLI::ExitCodes::ArgumentMismatch)) {
        const bool isMissing = text.find("missing") != std::string::npos;
        return text.substr(0, text.find(':')) +
               (isMissing ? " needs a value" : " can be given only once");
    }
    if (is(CLI::ExitCodes::ConversionError)) {
        return text.substr(std::min(text.find("--"), text.size())) + " is not a valid value";
    }
    if (text == "A subcommand is required") {
        return "a command is required";
    }
    return text;
}

std::string commandInHelp(const CLI::App& app) {
    const auto commands = app.get_subcommands();
    return app.get_name() + (commands.empty() ? "" : ' ' + commandInHelp(*commands.front()));
}

} // namespace

bool parseCommandLine(CLI::App& app, int argc, char** argv) {
    app.set_version_flag("--version", app.get_name() + ' ' + TOOLS_VERSION,
                         "Print the version and exit");
    app.set_help_all_flag("--help-all", "Print the help of all commands and exit");
    breakLines(app);
    try {
        app.parse(argc, argv);
        return true;
    } catch (const CLI::CallForAllHelp&) {
        printAll(app);
        return false;
    } catch (const CLI::Success& success) {
        app.exit(success);
        return false;
    } catch (const CLI::ParseError& error) {
        throw Error(words(app, error) + " (see " + commandInHelp(app) + " --help)", exitUsage);
    }
}

} // namespace tools
