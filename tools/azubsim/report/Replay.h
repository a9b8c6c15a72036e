#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>

#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

/// Gives the answers of a recording again: to each request the next one to the same command,
/// whichever client asks.
///
/// Bytes that a client got without a request are sent with the previous answer to that client.
class Replay {
public:
    struct Rules {
        bool isTimed = false;   ///< Keeps the recorded waits; otherwise each answer is one piece.
        bool isInOrder = false; ///< Gives the answers in their order and ignores the requests.
        bool repeats = false;   ///< Starts again after the last answer.
    };
    using Tell = std::function<void(const std::string&)>;

    /// Reads the whole recording. Calls `tell` with what the user should know: that the recording
    /// is cut short, or later that the answers to a command were all given. Throws a `tools::Error`
    /// if the file is not a recording.
    Replay(const std::string& path, Rules rules, Tell tell);

    /// The next answer; after the last one, a reply that closes the connection.
    Reply next(const std::string& request);

private:
    void add(Exchange exchange);
    std::string key(const std::string& request) const;

    const Rules _rules;
    const Tell _tell;
    std::map<std::string, std::deque<Reply>> _answers; ///< By command.
    std::map<int, Reply*> _last;                       ///< By client.
};

} // namespace azubsim
