#pragma once

#include <string>

#include "tools/lipsyncctl/Failure.h"
#include "tools/lipsyncctl/Options.h"
#include "tools/lipsyncctl/Record.h"

namespace lipsyncctl {

/// Prints results to standard output, one line each.
class Output {
public:
    explicit Output(Format format) : _format(format) {}

    /// `text` is for people, `record` for programs. All records of one output have the same keys,
    /// because they are the columns of the CSV.
    void print(const Record& record, const std::string& text);

    /// Prints the record if the output is for programs.
    void print(const Record& record);

    /// Reports why the command failed: to people on standard error, to programs that read JSON on
    /// standard output too. Returns the exit status.
    int fail(const Failure& failure);

private:
    void printCsv(const Record& record);

    Format _format;
    bool _hasHeader = false;
};

/// Flushes standard output. Returns the exit status of the program, which is `status` if everything
/// could be written.
int finishOutput(int status);

} // namespace lipsyncctl
