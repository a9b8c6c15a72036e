#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace manual {

/// The value that an option takes as it is shown to users: its name alone.
inline std::string valueName(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    return type.substr(0, type.find(':'));
}

/// What an option does, and what it is if it is not given.
inline std::string describe(const CLI::Option& option) {
    const std::string standard = option.get_default_str();
    return option.get_description() + (standard.empty() ? "" : " (" + standard + ")");
}

/// Breaks text into lines of at most `width` characters, where a word allows it.
std::string wrapped(const std::string& text, std::size_t width);

/// Help that fits a terminal of 80 columns.
class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter();

    std::string make_description(const CLI::App* app) const override;
    std::string make_subcommand(const CLI::App* sub) const override;
    std::string make_option_opts(const CLI::Option* option) const override;
    std::string make_option_desc(const CLI::Option* option) const override;
};

} // namespace manual
