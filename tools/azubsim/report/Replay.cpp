#include "tools/azubsim/report/Replay.h"

#include <utility>

#include "tools/azubsim/protocol/Messages.h"
#include "tools/common/Error.h"

namespace azubsim {

Replay::Replay(const std::string& path, Rules rules) : _rules(rules) {
    Recording recording(path);
    while (auto exchange = recording.next()) {
        add(std::move(*exchange));
    }
    if (_answers.empty()) {
        throw tools::Error("cannot replay " + path + ": it contains no exchanges");
    }
    _note = recording.isCut() ? "the last line of " + path + " is unfinished and is left out" : "";
}

void Replay::add(Exchange exchange) {
    Reply& reply = exchange.reply;
    if (!_rules.isTimed && !reply.pieces.empty()) {
        reply.pieces = {{std::chrono::microseconds(0), reply.bytes()}};
    }
    Reply*& last = _last[exchange.client];
    if (exchange.isUnasked() && last != nullptr) {
        last->pieces.insert(last->pieces.end(), reply.pieces.begin(), reply.pieces.end());
        last->closes = reply.closes;
    } else if (exchange.isComplete) {
        auto& replies = _answers[key(exchange.request)].replies;
        replies.push_back(std::move(reply));
        last = &replies.back();
    }
}

std::string Replay::key(const std::string& request) const {
    return _rules.isInOrder ? "" : commandOf(request);
}

Reply Replay::next(const std::string& request) {
    const std::string command = key(request);
    Answers& answers = _answers[command];
    if (answers.next == answers.replies.size() && _rules.repeats) {
        answers.next = 0;
    }
    if (answers.next == answers.replies.size()) {
        return {{}, true};
    }
    Reply reply = answers.replies[answers.next++];
    if (answers.next == answers.replies.size() && !_rules.repeats) {
        _note = "the recording has no more answers" + (command.empty() ? "" : " to " + command) +
                "; further requests close the connection";
    }
    return reply;
}

std::string Replay::takeNote() {
    return std::exchange(_note, "");
}

} // namespace azubsim
