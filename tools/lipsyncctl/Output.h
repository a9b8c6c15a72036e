#pragma once

#include <string>

#include "tools/lipsyncctl/Options.h"
#include "tools/lipsyncctl/Reading.h"

namespace lipsyncctl {

/// Prints results on standard output, a line each.
class Output {
public:
    explicit Output(Format format) : _format(format) {}

    /// `text` is for people, the record for programs. All records of one output have the same
    /// keys, which are the columns of CSV.
    void print(const Record& record, const std::string& text);

private:
    void printCsv(const Record& record);

    Format _format;
    bool _hasHeader = false;
};

} // namespace lipsyncctl
