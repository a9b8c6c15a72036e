#pragma once

#include <string>

#include "tools/lipsyncctl/Connection.h"
#include "tools/lipsyncctl/Options.h"

namespace lipsyncctl {

/// Prints results to standard output, one line each. If the reader has gone, ends the program as
/// quietly as one that does not ignore SIGPIPE. Throws an `Error` if a result cannot be written.
class Output {
public:
    explicit Output(Format format) : _format(format) {}

    /// `text` is for people and may be empty, `record` for programs. All records of one output have
    /// the same keys, because they are the columns of the CSV.
    void print(const Record& record, const std::string& text);

private:
    void printCsv(const Record& record);

    Format _format;
    bool _hasHeader = false;
};

} // namespace lipsyncctl
