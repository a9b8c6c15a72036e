#include "tools/common/Tool.h"

#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstring>
#include <iostream>

#include "tools/common/Error.h"
#include "tools/common/Text.h"

namespace tools {

namespace {

std::string toolName;

// No socket may get the number of a standard descriptor. Writing to such a descriptor still fails.
void openStandardDescriptors() {
    for (int fd = 0; fd <= 2; ++fd) {
        if (fcntl(fd, F_GETFD) < 0) {
            static_cast<void>(open("/dev/null", O_RDONLY));
        }
    }
}

// Prints the help of the commands of `app`, with headings that name them: the manual page has them
// all. `parents` is what comes before a command.
void printCommands(CLI::App& app, const std::string& parents) {
    for (CLI::App* const command : app.get_subcommands({})) {
        const std::string& name = command->get_name();
        command->description(CLI::detail::find_and_replace(
            "Command " + name + ":\n" + command->get_description(), "\n", "\n  "));
        command->get_formatter()->label("Positionals", "Positionals of " + name);
        for (CLI::Option* const option : command->get_options()) {
            option->group("Options of " + name);
        }
        std::cout << command->help(parents);
        printCommands(*command, std::string(parents).append(' ' + name));
    }
}

// The words of the parser where they are good, and ours elsewhere.
std::string words(const CLI::App& app, const CLI::ParseError& error) {
    // A misspelt command is also a missing one.
    if (const auto extras = app.remaining(true); !extras.empty()) {
        return "unexpected argument '" + extras.front() + "'";
    }
    const std::string text = error.what();
    switch (static_cast<CLI::ExitCodes>(error.get_exit_code())) {
        case CLI::ExitCodes::ArgumentMismatch:
            return text.substr(0, text.find(':')) + (text.find("missing") != std::string::npos
                                                         ? " needs a value"
                                                         : " can be given only once");
        case CLI::ExitCodes::ConversionError:
            return text.substr(text.find(": ") + 2) + " is not a valid value";
        default: return text == "A subcommand is required" ? "a command is required" : text;
    }
}

std::string commandInHelp(const CLI::App& app) {
    const auto commands = app.get_subcommands();
    return app.get_name() + (commands.empty() ? "" : ' ' + commandInHelp(*commands.front()));
}

} // namespace

int runTool(const char* name, const std::function<int()>& body) {
    toolName = name;
    openStandardDescriptors();
    std::setlocale(LC_CTYPE, "");
    // Writing to a program that has gone must not kill this process.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const int status = body();
        checkOutput();
        return status;
    } catch (const Error& e) {
        complain(e.what());
        return e.exitStatus();
    }
}

void complain(const std::string& text) {
    // One write for the whole line.
    const std::string line = toolName + ": " + printable(text);
    std::cerr << broken(line, terminalColumns(STDERR_FILENO)) + '\n';
}

void checkOutput() {
    errno = 0;
    if (!std::cout.flush()) {
        throw Error(std::string("cannot write to standard output") +
                    (errno != 0 ? std::string(": ") + std::strerror(errno) : ""));
    }
}

bool parseCommandLine(CLI::App& app, int argc, char** argv) {
    app.set_version_flag("--version", app.get_name() + ' ' + TOOLS_VERSION,
                         "Print the version and exit");
    app.set_help_all_flag("--help-all", "Print the help of all commands and exit");
    app.get_formatter()->column_width(24);
    try {
        app.parse(argc, argv);
        return true;
    } catch (const CLI::CallForAllHelp&) {
        std::cout << app.help();
        printCommands(app, app.get_name());
        return false;
    } catch (const CLI::Success& success) {
        app.exit(success);
        return false;
    } catch (const CLI::ParseError& error) {
        throw Error(words(app, error) + " (see " + commandInHelp(app) + " --help)", exitUsage);
    }
}

} // namespace tools
