#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/azubsim/Reply.h"

namespace azubsim {

/// Gives the answers of a file that `Recorder` wrote, in order, regardless of the clients
/// and their requests.
///
/// Bytes that a client got without a request are sent with the previous answer to that client.
class Replay {
public:
    /// Reads and checks the whole file. Returns false, with the reason in `error`, if it is not a
    /// recording. `isTimed` keeps the recorded waits; otherwise each answer is one piece.
    bool open(const std::string& path, bool isTimed, std::string& error);

    /// A hint for the user, or empty. A killed recorder can leave an unfinished last line; the note
    /// says that it was ignored.
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
