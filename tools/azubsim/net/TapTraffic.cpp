// What a TapSession does with the bytes that pass: it finds, spoils and reports exchanges.

#include "tools/azubsim/net/TapSession.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "tools/azubsim/protocol/Messages.h"

namespace azubsim {

namespace {

// Nothing more is read from one side while the other has not taken this many bytes.
constexpr std::size_t maxUnsent = 262144;

// Bytes that all clients together may make the tap keep. Beyond that, requests are reported as
// unanswered, and answers are passed on but not kept.
constexpr std::size_t maxKept = 16777216;

std::chrono::microseconds since(std::chrono::steady_clock::time_point start,
                                std::chrono::steady_clock::time_point end) {
    return std::chrono::duration_cast<std::chrono::microseconds>(end - start);
}

} // namespace

void TapSession::requested(std::string_view bytes) {
    _arrival = Clock::now();
    _engine->send({noWait, std::string(bytes)});
    while (_client->isOpen() && !bytes.empty()) {
        const Framer::Part part = _requests.next(bytes);
        const std::size_t room = maxRequestSize - _request.size();
        _request += part.bytes.substr(0, room);
        if (part.isEnd && part.bytes.size() <= room) {
            _request.resize(_request.size() - std::strlen(endMarker));
        }
        if (part.isEnd) {
            addRequest();
        }
    }
    if (_engine->unsent() > maxUnsent) {
        _client->pause();
    }
}

void TapSession::addRequest() {
    addPending(std::exchange(_request, ""));
    Pending& pending = _pending.back();
    pending.fault = _tap._faults.next(_clientNumber, commandOf(pending.exchange.request));
    if (pending.fault) {
        pending.exchange.fault = pending.fault->text();
    }
    while (_tap._kept > maxKept && !_pending.empty()) {
        giveUpFault(_pending.front(), "no answer");
        reportFirst();
    }
}

void TapSession::addPending(const std::string& request) {
    Pending pending;
    pending.exchange.client = _clientNumber;
    pending.exchange.time = tools::now();
    pending.exchange.request = request;
    pending.asked = _arrival;
    pending.lastPiece = _arrival;
    pending.kept = request.size() + sizeof(Pending);
    _tap._kept += pending.kept;
    _pending.push_back(std::move(pending));
}

void TapSession::answered(std::string_view bytes) {
    _arrival = Clock::now();
    while (!bytes.empty() && _client->isOpen()) {
        if (_pending.empty()) {
            addPending("");
        }
        const Framer::Part part = _answers.next(bytes);
        addAnswer(part.bytes, part.isEnd);
    }
    if (!_client->isOpen()) {
        // A fault has closed the connection.
        reportRest(true);
    }
    if (_client->unsent() > maxUnsent) {
        _engine->pause();
    }
}

void TapSession::addAnswer(std::string_view bytes, bool isComplete) {
    Pending& pending = _pending.front();
    const bool isKept = keep(pending, bytes.size() + sizeof(Reply::Piece));
    if (isKept) {
        const auto wait = since(std::exchange(pending.lastPiece, _arrival), _arrival);
        pending.exchange.reply.pieces.push_back({wait, std::string(bytes)});
    } else {
        pending.exchange.leftOut += bytes.size();
        giveUpFault(pending, "the answer is too long");
    }
    if (!pending.fault) {
        _client->send({noWait, std::string(bytes)});
    }
    if (!isComplete) {
        return;
    }
    pending.exchange.engineTook = since(pending.asked, _arrival);
    if (pending.fault) {
        spoil(pending);
    }
    reportFirst();
}

bool TapSession::keep(Pending& pending, std::size_t size) {
    // What is kept must not have gaps.
    if (pending.exchange.leftOut > 0 || _tap._kept + size > maxKept) {
        return false;
    }
    pending.kept += size;
    _tap._kept += size;
    return true;
}

void TapSession::spoil(Pending& pending) {
    Exchange& exchange = pending.exchange;
    exchange.said = exchange.reply.bytes();
    const std::string answer =
        exchange.said.substr(0, exchange.said.size() - std::strlen(endMarker));
    exchange.reply = _tap._faults.apply(*pending.fault, answer);
    for (const Reply::Piece& piece : exchange.reply.pieces) {
        _client->send(piece);
    }
    if (exchange.reply.closes) {
        _client->closeWhenSent();
        _engine->close();
    }
    if (!exchange.reply.pieces.empty()) {
        exchange.reply.pieces.front().wait += exchange.engineTook;
    }
}

// Passes on what was collected, because there is no complete answer to spoil.
void TapSession::giveUpFault(Pending& pending, const char* reason) {
    if (!pending.fault) {
        return;
    }
    pending.fault.reset();
    pending.exchange.fault += std::string(" (not applied: ") + reason + ')';
    for (const Reply::Piece& piece : pending.exchange.reply.pieces) {
        _client->send({noWait, piece.bytes});
    }
}

void TapSession::reportFirst() {
    _tap._reports.add(_pending.front().exchange);
    _tap._kept -= _pending.front().kept;
    _pending.pop_front();
}

// Reports what the end of the connection has interrupted.
void TapSession::reportRest(bool closes) {
    if (!_request.empty()) {
        addPending(std::exchange(_request, ""));
        _pending.back().exchange.isComplete = false;
    }
    while (!_pending.empty()) {
        _pending.front().exchange.reply.closes = closes;
        reportFirst();
    }
}

} // namespace azubsim
