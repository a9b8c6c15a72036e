#include "tools/azubsim/report/Replay.h"

#include <utility>

#include "tools/azubsim/protocol/Messages.h"
#include "tools/azubsim/report/Recording.h"
#include "tools/common/Error.h"

namespace azubsim {

Replay::Replay(const std::string& path, Rules rules, Tell tell)
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

void Replay::add(Exchange exchange) {
    Reply& reply = exchange.reply;
    if (!_rules.isTimed && !reply.pieces.empty()) {
        reply.pieces = {{noWait, reply.bytes()}};
    }
    Reply*& last = _last[exchange.client];
    if (exchange.isUnasked() && last != nullptr) {
        last->pieces.insert(last->pieces.end(), reply.pieces.begin(), reply.pieces.end());
        last->closes = reply.closes;
    } else if (exchange.isComplete) {
        auto& replies = _answers[key(exchange.request)];
        replies.push_back(std::move(reply));
        last = &replies.back();
    }
}

std::string Replay::key(const std::string& request) const {
    return _rules.isInOrder ? "" : commandOf(request);
}

Reply Replay::next(const std::string& request) {
    const std::string command = key(request);
    std::deque<Reply>& replies = _answers[command];
    if (replies.empty()) {
        return {{}, true};
    }
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

} // namespace azubsim
