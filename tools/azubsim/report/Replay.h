#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "tools/azubsim/protocol/Messages.h"
#include "tools/azubsim/report/Recording.h"
#include "tools/common/Error.h"

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
    Replay(const std::string& path, Rules rules, Tell tell)
        : _rules(rules), _tell(std::move(tell)) {
        Recording recording(path);
        while (auto exchange = recording.next()) {
            add(std::move(*exchange));
        }
        tools::require(!_answers.empty(), "cannot replay " + path + ": it contains no exchanges");
        if (recording.isCut()) {
            _tell("the last line of " + path + " is unfinished and is left out");
        }
    }

    /// The next answer; after the last one, a reply that closes the connection.
    Reply next(const std::string& request) {
        const auto found = _answers.find(key(request));
        if (found == _answers.end() || found->second.empty()) {
            return {{}, true};
        }
        auto& [command, replies] = *found;
        Reply reply = replies.front();
        replies.pop_front();
        if (_rules.repeats) {
            replies.push_back(reply);
        } else if (replies.empty()) {
            _tell("the recording has no more answers" + (command.empty() ? "" : " to " + command) +
                  "; further requests close the connection");
        }
        return reply;
    }

private:
    void add(Exchange exchange) {
        Reply& reply = exchange.reply;
        if (!_rules.isTimed && !reply.pieces.empty()) {
            reply.pieces = {{noWait, reply.bytes()}};
        }
        Reply*& last = _last[exchange.client];
        if (exchange.isUnasked() && last != nullptr) {
            last->pieces.insert(last->pieces.end(), reply.pieces.begin(), reply.pieces.end());
            last->closes = reply.closes;
        } else if (exchange.isComplete) {
            last = &_answers[key(exchange.request)].emplace_back(std::move(reply));
        }
    }

    std::string key(const std::string& request) const {
        return _rules.isInOrder ? "" : commandOf(request);
    }

    const Rules _rules;
    const Tell _tell;
    std::map<std::string, std::deque<Reply>> _answers; ///< By command.
    std::map<int, Reply*> _last;                       ///< By client, while it reads.
};

} // namespace azubsim
