#include "tools/common/HelpFormatter.h"

#include <sstream>

namespace tools {

namespace {

constexpr std::size_t columns = 80;
constexpr std::size_t nameColumns = 24;

} // namespace

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

HelpFormatter::HelpFormatter() {
    column_width(nameColumns);
}

std::string HelpFormatter::make_description(const CLI::App* app) const {
    return wrapped(app->get_description(), columns) + '\n';
}

std::string HelpFormatter::make_subcommand(const CLI::App* sub) const {
    std::ostringstream out;
    CLI::detail::format_help(out, sub->get_name(),
                             wrapped(sub->get_description(), columns - nameColumns), nameColumns);
    return out.str();
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const {
    const std::string value = valueName(*option);
    return value.empty() ? "" : " " + value;
}

std::string HelpFormatter::make_option_desc(const CLI::Option* option) const {
    return wrapped(describe(*option), columns - nameColumns);
}

} // namespace tools
