#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace tools {

/// The placeholder for an option's value, without the checks that the parser appends to it.
inline std::string valueName(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    return type.substr(0, type.find(':'));
}

/// An option's description, with its default if there is one.
inline std::string describe(const CLI::Option& option) {
    const std::string standard = option.get_default_str();
    return option.get_description() + (standard.empty() ? "" : " (default " + standard + ")");
}

/// Wraps text at `width` characters; longer words are not broken.
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

} // namespace tools
