#pragma once

#include <functional>
#include <string>

namespace tools {

/// Calls `handle` with each line of a file, without its line end. Throws an `Error` if the file
/// cannot be read. An `Error` that `handle` throws gets "FILE:LINE: " before it.
void readLines(const std::string& file, const std::function<void(const std::string& line)>& handle);

/// The first word of a line and the rest of the line, both without surrounding blanks.
struct Words {
    explicit Words(const std::string& line);

    std::string first;
    std::string rest;
};

} // namespace tools
