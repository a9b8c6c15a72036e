#include "tools/lipsyncctl/Output.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "tools/common/Text.h"
#include "tools/common/Tool.h"

namespace lipsyncctl {

namespace {

// ASCII only: the text of an error is the engine's, which may be invalid UTF-8 or contain control
// characters that JSON would allow.
std::string json(const Record& value) {
    return value.dump(-1, ' ', true, Record::error_handler_t::replace);
}

// A missing value is an empty cell. For an error the cell has only its text, which contains the
// code.
std::string cell(const Record& value) {
    if (value.is_object()) {
        std::ostringstream text;
        text << std::quoted(tools::printable(value["text"]), '"', '"');
        return text.str();
    }
    return value.is_null() ? "" : value.is_string() ? value.get<std::string>() : json(value);
}

void writeLine(const std::string& line) {
    std::cout << line << std::endl;
    if (!std::cout && errno == EPIPE) {
        std::signal(SIGPIPE, SIG_DFL);
        std::raise(SIGPIPE);
    }
    tools::checkOutput();
}

} // namespace

void Output::print(const Record& record, const std::string& text) {
    if (_format == Format::Csv) {
        printCsv(record);
    } else if (_format == Format::Json) {
        writeLine(json(record));
    } else if (!text.empty()) {
        writeLine(tools::broken(text, tools::terminalColumns(STDOUT_FILENO)));
    }
}

void Output::printCsv(const Record& record) {
    std::string header;
    std::string row;
    for (const auto& [key, value] : record.items()) {
        const char* const separator = header.empty() ? "" : ",";
        header += separator + key;
        row += separator + cell(value);
    }
    if (!_hasHeader) {
        writeLine(header);
        _hasHeader = true;
    }
    writeLine(row);
}

} // namespace lipsyncctl
