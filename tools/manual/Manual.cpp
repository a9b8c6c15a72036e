#include "tools/manual/Manual.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <vector>

#include "tools/common/HelpFormatter.h"

namespace manual {

namespace {

using Visitor = std::function<void(const CLI::App& command, const std::string& path)>;

// Escapes the characters that roff would interpret.
std::string roff(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\\') {
            escaped += "\\e";
        } else if (c == '-') {
            escaped += "\\-";
        } else if (c == '\'' && (escaped.empty() || escaped.back() == '\n')) {
            escaped += "\\(aq";
        } else {
            escaped += c;
        }
    }
    return escaped;
}

std::vector<const CLI::App*> commandsOf(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App*) { return true; });
}

// Visits every command and its subcommands with their full names, for example "margin set".
void visit(const CLI::App& app, const std::string& path, const Visitor& visitor) {
    for (const CLI::App* const command : commandsOf(app)) {
        const std::string words = path + command->get_name();
        visitor(*command, words);
        visit(*command, words + ' ', visitor);
    }
}

std::string optionList(const CLI::App& app) {
    std::string list;
    for (const CLI::Option* const option : app.get_options()) {
        // Every command has --help; list it once.
        if (option == app.get_help_ptr() && app.get_parent() != nullptr) {
            continue;
        }
        list += ".TP\n.B " + roff(option->get_name(false, true)) + " \\fI" +
                roff(tools::valueName(*option)) + "\\fR\n" + roff(tools::describe(*option)) + ".\n";
    }
    return list;
}

std::string commandList(const CLI::App& app) {
    std::string list;
    visit(app, "", [&](const CLI::App& command, const std::string& words) {
        if (commandsOf(command).empty()) {
            list += ".SS " + roff(words) + '\n' + roff(command.get_description()) + ".\n" +
                    optionList(command);
        }
    });
    return list;
}

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

std::string commandNames(const CLI::App& app) {
    std::string names;
    for (const CLI::App* const command : commandsOf(app)) {
        names += command->get_name() + ' ';
    }
    return names;
}

std::string optionNames(const CLI::App& app) {
    std::string names;
    for (const CLI::Option* const option : app.get_options()) {
        if (option != app.get_help_ptr() && !option->get_lnames().empty()) {
            names += "--" + option->get_lnames().front() + ' ';
        }
    }
    return names;
}

// Lines of a bash `case` on the previous word: the completions of each option that takes a value.
std::string valueCases(const CLI::App& app) {
    std::string cases;
    for (const CLI::Option* const option : app.get_options()) {
        const std::string value = tools::valueName(*option);
        if (value.empty() || option->get_lnames().empty()) {
            continue;
        }
        std::string words = value;
        std::replace(words.begin(), words.end(), '|', ' ');
        const bool isFile = value == "PATH" || value == "FILE";
        const std::string generate = isFile           ? "-f"
                                     : words == value ? "-W ''"
                                                      : "-W '" + words + "'";
        cases += "        --" + option->get_lnames().front() + ") COMPREPLY=($(compgen " +
                 generate + " -- \"$current\")); return ;;\n";
    }
    visit(app, "", [&](const CLI::App& command, const std::string&) {
        if (commandsOf(command).empty()) {
            cases += valueCases(command);
        }
    });
    return cases;
}

// The options that take a value, as a bash pattern.
std::string valueOptions(const CLI::App& app) {
    std::string pattern;
    const auto add = [&](const CLI::App& command, const std::string&) {
        for (const CLI::Option* const option : command.get_options()) {
            if (!tools::valueName(*option).empty() && !option->get_lnames().empty()) {
                pattern += (pattern.empty() ? "--" : "|--") + option->get_lnames().front();
            }
        }
    };
    add(app, "");
    visit(app, "", add);
    return pattern;
}

} // namespace

std::string manualPage(const CLI::App& app) {
    const std::string description = app.get_description();
    const std::string brief = description.substr(0, description.find_first_of(".:"));
    const bool hasCommands = !commandsOf(app).empty();
    std::string page =
        ".TH " + upperCase(app.get_name()) + " 1\n.SH NAME\n" + roff(app.get_name()) + " \\- " +
        roff(brief) + "\n.SH SYNOPSIS\n.B " + roff(app.get_name()) +
        (hasCommands ? "\nCOMMAND [OPTION]...\n" : "\n[OPTION]...\n") + ".SH DESCRIPTION\n" +
        roff(description) + "\n.SH OPTIONS\n" + optionList(app);
    if (hasCommands) {
        page += ".SH COMMANDS\n" + commandList(app);
    }
    return page + ".SH NOTES\n.nf\n" + roff(app.get_footer()) + ".fi\n";
}

std::string bashCompletion(const CLI::App& app) {
    const std::string name = app.get_name();
    std::string cases;
    visit(app, "", [&](const CLI::App& command, const std::string& words) {
        cases += "        '" + words + " ') words='" + commandNames(command) +
                 optionNames(command) + optionNames(app) + "--help' ;;\n";
    });
    return "# Bash completion for " + name + ".\n_" + name +
           "() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}\n"
           "    case $previous in\n" +
           valueCases(app) +
           "    esac\n"
           "    local command= word words='" +
           commandNames(app) + optionNames(app) +
           "--help'\n"
           "    local isValue=\n"
           "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
           "        case $isValue$word in\n"
           "            " +
           valueOptions(app) +
           ") isValue=1; continue ;;\n"
           "            [a-z]*) command+=\"$word \" ;;\n"
           "        esac\n"
           "        isValue=\n"
           "    done\n"
           "    case $command in\n" +
           cases +
           "    esac\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
           "}\n"
           "complete -F _" +
           name + ' ' + name + '\n';
}

} // namespace manual
