#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace tools {

/// Help that fits a terminal of 80 columns. The help of a program also lists the options of its
/// commands, so that its manual page has them. The manual page is made from the help.
class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter();

    std::string make_description(const CLI::App* app) const override;
    std::string make_subcommands(const CLI::App* app, CLI::AppFormatMode mode) const override;
    std::string make_option_name(const CLI::Option* option, bool isValue) const override;
    std::string make_option_opts(const CLI::Option* option) const override;
    std::string make_option_desc(const CLI::Option* option) const override;

private:
    void list(const CLI::App& app, const std::string& path, std::string& commands,
              std::string& options) const;
};

} // namespace tools
