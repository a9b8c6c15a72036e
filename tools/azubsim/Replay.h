#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/azubsim/Reply.h"

namespace azubsim {

/// Gives the answers of a file that `Recorder` wrote, in order, whoever asks for what.
///
/// Bytes that a client got without a request are sent with its answer before them.
class Replay {
public:
    /// Reads and checks the whole file. Returns false, with the reason in `error`, if it is not a
    /// recording. `isTimed` keeps the recorded waits; otherwise each answer is one piece.
    bool open(const std::string& path, bool isTimed, std::string& error);

    /// What the user should know about the file, or empty: an unfinished last line, which a killed
    /// recorder leaves, is ignored.
    const std::string& note() const { return _note; }

    /// The next answer; after the last one, a reply that closes the connection.
    Reply next();

    /// All answers were given.
    bool hasEnded() const { return _next == _replies.size(); }

private:
    std::vector<Reply> _replies;
    std::size_t _next = 0;
    std::string _note;
};

} // namespace azubsim
