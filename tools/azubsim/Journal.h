#pragma once

#include <fstream>
#include <string>
#include <vector>

#include "tools/azubsim/Reply.h"

namespace azubsim {

/// Writes exchanges to a file, one JSON object per line.
class Recorder {
public:
    /// Returns false if the file cannot be opened.
    bool open(const std::string& path);

    /// `fault` is empty for an answer without a fault. Does nothing before `open`.
    void add(int client, const std::string& request, const Reply& reply, const std::string& fault);

private:
    std::ofstream _file;
};

/// Replays the answers of a recorded file in order.
class Replay {
public:
    /// Returns false, with the reason in `error`, if the file is not a recording.
    bool open(const std::string& path, std::string& error);

    /// The next answer; after the last one, a reply that closes the connection.
    Reply next();

private:
    std::vector<Reply> _replies;
    std::size_t _next = 0;
};

} // namespace azubsim
