#pragma once

#include <string>

#include "tools/lipsyncctl/Options.h"
#include "tools/lipsyncctl/Reading.h"

namespace lipsyncctl {

/// Prints results to standard output, one line each.
class Output {
public:
    explicit Output(Format format) : _format(format) {}

    /// `text` is for people, `record` for programs. All records of one output have the same keys,
    /// because they are the columns of the CSV.
    void print(const Record& record, const std::string& text);

private:
    void printCsv(const Record& record);

    Format _format;
    bool _hasHeader = false;
};

} // namespace lipsyncctl
