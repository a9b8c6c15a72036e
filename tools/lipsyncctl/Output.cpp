#include "tools/lipsyncctl/Output.h"

#include <iostream>

namespace lipsyncctl {

void Output::print(const Record& record, const std::string& text) {
    switch (_format) {
        case Format::Text: std::cout << text << '\n'; break;
        case Format::Json: std::cout << record.dump() << '\n'; break;
        case Format::Csv: printCsv(record); break;
    }
    std::cout.flush();
}

// The values are numbers and plain words, so no quoting is needed.
void Output::printCsv(const Record& record) {
    std::string header;
    std::string row;
    for (const auto& [key, value] : record.items()) {
        const char* const separator = header.empty() ? "" : ",";
        header += separator + key;
        row += separator + (value.is_string() ? value.get<std::string>() : value.dump());
    }
    if (!_hasHeader) {
        std::cout << header << '\n';
        _hasHeader = true;
    }
    std::cout << row << '\n';
}

} // namespace lipsyncctl
