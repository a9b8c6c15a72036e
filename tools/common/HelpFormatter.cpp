#include "tools/common/HelpFormatter.h"

#include <sstream>

namespace tools {

namespace {

constexpr std::size_t columns = 80;
constexpr std::size_t nameColumns = 24;

// Wraps text at `width` characters. Longer words are not broken.
std::string wrapped(const std::string& text, std::size_t width) {
    std::istringstream words(text);
    std::string lines;
    std::size_t used = 0;
    for (std::string word; words >> word; used += word.size()) {
        if (used + 1 + word.size() > width) {
            lines += '\n';
            used = 0;
        } else if (used > 0) {
            lines += ' ';
            ++used;
        }
        lines += word;
    }
    return lines;
}

// The placeholder for an option's value, without the checks that the parser appends to it.
std::string valueName(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    return type.substr(0, type.find(':'));
}

// An option's description, with the value that it has if it is not given.
std::string describe(const CLI::Option& option) {
    std::string fallback = option.get_default_str();
    if (!option.get_envname().empty()) {
        fallback = "$" + option.get_envname() + (fallback.empty() ? "" : " or " + fallback);
    }
    return option.get_description() + (fallback.empty() ? "" : " (default " + fallback + ")");
}

bool isPositional(const CLI::Option* option) {
    return option->get_positional();
}

} // namespace

HelpFormatter::HelpFormatter() {
    column_width(nameColumns);
    label("SUBCOMMAND", "COMMAND");
}

std::string HelpFormatter::make_description(const CLI::App* app) const {
    return wrapped(app->get_description(), columns) + '\n';
}

std::string HelpFormatter::make_subcommands(const CLI::App* app,
                                            CLI::AppFormatMode /*mode*/) const {
    std::string commands;
    std::string options;
    list(*app, "", commands, options);
    return commands.empty() ? "" : "\nCommands:\n" + commands + options;
}

// Appends to `commands` a line for each command that can run, for example "margin set MS", and to
// `options` a section with the options that only this command has.
void HelpFormatter::list(const CLI::App& app, const std::string& path, std::string& commands,
                         std::string& options) const {
    for (const CLI::App* const command : app.get_subcommands({})) {
        std::string words = path + command->get_name();
        list(*command, words + ' ', commands, options);
        if (!command->get_subcommands({}).empty()) {
            continue;
        }
        const auto own = command->get_options([command](const CLI::Option* option) {
            return option->nonpositional() && option != command->get_help_ptr();
        });
        if (!own.empty()) {
            options += make_group("Options of " + words, false, own);
        }
        for (const CLI::Option* const value : command->get_options(isPositional)) {
            words += ' ' + value->get_name(true);
        }
        std::ostringstream line;
        CLI::detail::format_help(
            line, words, wrapped(command->get_description(), columns - nameColumns), nameColumns);
        commands += line.str();
    }
}

// "-h, --help" instead of "-h,--help".
std::string HelpFormatter::make_option_name(const CLI::Option* option, bool isValue) const {
    return CLI::detail::find_and_replace(CLI::Formatter::make_option_name(option, isValue), ",",
                                         ", ");
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const {
    const std::string value = valueName(*option);
    return value.empty() ? "" : " " + value;
}

std::string HelpFormatter::make_option_desc(const CLI::Option* option) const {
    return wrapped(describe(*option), columns - nameColumns);
}

} // namespace tools
