#include "tools/azubsim/net/TapSession.h"

#include <cstring>
#include <utility>

#include "tools/azubsim/protocol/Messages.h"

namespace azubsim {

namespace {

// How long an engine may take to read what a client sent before it left.
constexpr std::chrono::seconds timeForRest{2};

// Nothing more is read from one side while the other has not taken this many bytes.
constexpr std::size_t maxUnsent = 262144;

// Bytes that all clients together may make the tap keep. Beyond that, requests are reported as
// unanswered, and answers are passed on but not kept.
constexpr std::size_t maxKept = 16777216;

// Unlike the times of exchanges, this clock is never set.
tools::Time monotonicNow() {
    return std::chrono::duration_cast<tools::Time>(
        std::chrono::steady_clock::now().time_since_epoch());
}

} // namespace

TapSession::TapSession(Socket client, Socket engine, int number, Shared& shared)
    : _shared(shared),
      _number(number),
      _limit(client.get_executor()),
      _client(std::make_shared<Connection>(std::move(client))),
      _engine(std::make_shared<Connection>(std::move(engine))) {}

std::shared_ptr<Connection> TapSession::start() {
    const auto self = shared_from_this();
    Connection::Handlers client;
    client.received = [self](std::string_view bytes) { self->requested(bytes); };
    // It may still read answers.
    client.ended = [self] { self->_engine->endSending(); };
    client.left = [self] { self->clientLeft(); };
    client.drained = [self] { self->_engine->resume(); };
    client.closed = [self] {
        self->reportRest();
        self->_limit.cancel();
        self->_engine->close();
    };
    _client->start(std::move(client));
    Connection::Handlers engine;
    engine.received = [self](std::string_view bytes) { self->answered(bytes); };
    engine.ended = [self] {
        if (!self->_pending.empty()) {
            self->giveUpFault(self->_pending.front(), "no complete answer");
        }
        self->_engine->close();
        self->_client->closeWhenSent();
    };
    engine.drained = [self] { self->_client->resume(); };
    _engine->start(std::move(engine));
    return _client;
}

// The engine must not keep this session for ever.
void TapSession::clientLeft() {
    _hasClientLeft = true;
    _limit.expires_after(timeForRest);
    _limit.async_wait([self = shared_from_this()](const asio::error_code& cancelled) {
        if (!cancelled) {
            self->_client->close();
        }
    });
}

void TapSession::requested(std::string_view bytes) {
    _arrival = monotonicNow();
    _engine->send({noWait, std::string(bytes)});
    while (!bytes.empty()) {
        if (const auto request = _requests.next(bytes)) {
            addPending(*request);
            Pending& pending = _pending.back();
            pending.fault = _shared.faults.next(_number, commandOf(*request));
            pending.exchange.fault = pending.fault ? pending.fault->text() : "";
        }
        while (_shared.kept > maxKept && !_pending.empty()) {
            giveUpFault(_pending.front(), "no answer");
            reportFirst();
        }
    }
    if (_engine->unsent() > maxUnsent) {
        _client->pause();
    }
}

void TapSession::addPending(const std::string& request) {
    Pending pending;
    pending.exchange.client = _number;
    pending.exchange.time = tools::now();
    pending.exchange.request = request;
    pending.asked = _arrival;
    pending.lastPiece = _arrival;
    pending.kept = request.size() + sizeof(Pending);
    _shared.kept += pending.kept;
    _pending.push_back(std::move(pending));
}

void TapSession::answered(std::string_view bytes) {
    _arrival = monotonicNow();
    while (!bytes.empty() && _client->isOpen()) {
        if (_pending.empty()) {
            addPending("");
        }
        const Framer::Part part = _answers.next(bytes);
        addAnswer(part.bytes, part.isEnd);
    }
    if (_client->unsent() > maxUnsent) {
        _engine->pause();
    }
}

void TapSession::addAnswer(std::string_view bytes, bool isComplete) {
    Pending& pending = _pending.front();
    const std::size_t size = bytes.size() + sizeof(Reply::Piece);
    // What is kept must not have gaps.
    if (pending.exchange.leftOut == 0 && _shared.kept + size <= maxKept) {
        pending.kept += size;
        _shared.kept += size;
        const auto wait = _arrival - std::exchange(pending.lastPiece, _arrival);
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
    pending.exchange.engineTook = _arrival - pending.asked;
    if (pending.fault) {
        spoil(pending);
    }
    const bool closes = pending.exchange.reply.closes;
    reportFirst();
    if (closes) {
        _engine->close();
        _client->closeWhenSent();
    }
}

void TapSession::spoil(Pending& pending) {
    Exchange& exchange = pending.exchange;
    const std::string said = exchange.reply.bytes();
    _shared.faults.answer(exchange, said.substr(0, said.size() - std::strlen(endMarker)),
                          pending.fault);
    for (const Reply::Piece& piece : exchange.reply.pieces) {
        _client->send(piece);
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
    _shared.reports.add(_pending.front().exchange);
    _shared.kept -= _pending.front().kept;
    _pending.pop_front();
}

// Reports what the end of the connection has interrupted.
void TapSession::reportRest() {
    if (!_requests.rest().empty()) {
        addPending(_requests.rest());
        _pending.back().exchange.isComplete = false;
    }
    while (!_pending.empty()) {
        giveUpFault(_pending.front(), "no complete answer");
        _pending.front().exchange.reply.closes = !_hasClientLeft;
        reportFirst();
    }
}

} // namespace azubsim
