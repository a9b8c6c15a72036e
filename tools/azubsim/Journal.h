#pragma once

#include <fstream>
#include <string>
#include <vector>

#include "tools/azubsim/Reply.h"

namespace azubsim {

/// Writes exchanges to a file, one JSON object a line.
class Recorder {
public:
    /// False if the file cannot be written.
    bool open(const std::string& path);

    /// `fault` is empty for an answer that was not spoiled. Does nothing before `open`.
    void add(int client, const std::string& request, const Reply& reply, const std::string& fault);

private:
    std::ofstream _file;
};

/// Gives the answers of a recorded file back, in their order.
class Replay {
public:
    /// False, with the reason in `error`, if the file is none that a `Recorder` wrote.
    bool open(const std::string& path, std::string& error);

    /// The next answer; when there is none left, the connection is closed.
    Reply next();

private:
    std::vector<Reply> _replies;
    std::size_t _next = 0;
};

} // namespace azubsim
