#include "tools/lipsyncctl/Output.h"

#include <cerrno>
#include <csignal>
#include <iostream>

#include "tools/common/Printable.h"
#include "tools/lipsyncctl/Messages.h"

namespace lipsyncctl {

namespace {

// ASCII only: the text of an error is the engine's, which may be invalid UTF-8 or contain control
// characters that JSON would allow.
std::string json(const Record& value) {
    return value.dump(-1, ' ', true, Record::error_handler_t::replace);
}

std::string quoted(const std::string& text) {
    if (text.find_first_of(",\"") == std::string::npos) {
        return text;
    }
    std::string result = "\"";
    for (const char c : text) {
        result += c == '"' ? "\"\"" : std::string(1, c);
    }
    return result + '"';
}

// A missing value is an empty cell. For an error the cell has only its text, which contains the
// code.
std::string cell(const Record& value) {
    if (value.is_null()) {
        return "";
    }
    if (value.is_object()) {
        return cell(value["text"]);
    }
    return value.is_string() ? quoted(tools::printable(value.get<std::string>())) : json(value);
}

// If the reader has gone, ends the program as quietly as one that does not ignore this signal.
void checkReader() {
    if (!std::cout && errno == EPIPE) {
        std::signal(SIGPIPE, SIG_DFL);
        std::raise(SIGPIPE);
    }
}

void writeLine(const std::string& line) {
    std::cout << line << std::endl;
    checkReader();
}

} // namespace

void Output::print(const Record& record, const std::string& text) {
    if (_format == Format::Text) {
        writeLine(text);
    } else {
        print(record);
    }
}

void Output::print(const Record& record) {
    switch (_format) {
        case Format::Text: break;
        case Format::Json: writeLine(json(record)); break;
        case Format::Csv: printCsv(record); break;
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

int Output::fail(const Failure& failure) {
    complain(failure.text);
    if (_format == Format::Json) {
        Record record;
        record["error"] = failure.record();
        print(record);
    }
    return failure.exitStatus();
}

int finishOutput(int status) {
    if (std::cout.flush()) {
        return status;
    }
    checkReader();
    complain("cannot write to standard output");
    return exitFailure;
}

} // namespace lipsyncctl
