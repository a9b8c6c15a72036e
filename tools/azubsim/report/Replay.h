#pragma once

#include <deque>
#include <map>
#include <string>

#include "tools/azubsim/report/Recording.h"

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

    /// Reads the whole recording. Throws a `tools::Error` if it is not one.
    Replay(const std::string& path, Rules rules);

    /// The next answer; after the last one, a reply that closes the connection.
    Reply next(const std::string& request);

    /// What the user should know now, or nothing: that the recording is cut short, or that the
    /// answers to a command were all given.
    std::string takeNote();

private:
    struct Answers {
        std::deque<Reply> replies;
        std::size_t next = 0;
    };

    void add(Exchange exchange);
    std::string key(const std::string& request) const;

    Rules _rules;
    std::map<std::string, Answers> _answers; ///< By command.
    std::map<int, Reply*> _last;             ///< By client.
    std::string _note;
};

} // namespace azubsim
