#include "tools/azubsim/TapSession.h"

#include <utility>

#include "tools/azubsim/SocketFile.h"

namespace azubsim {

namespace {

// Nothing more is read from one side while the other has not taken this many bytes.
constexpr std::size_t maxUnsent = 262144;

// Requests that are kept for their answers. More are reported as unanswered, so that a client does
// not fill the memory while the engine is silent.
constexpr std::size_t maxPending = 1000;

// How soon to try again if the engine's queue of connections is full.
constexpr std::chrono::milliseconds retryPause{10};

std::chrono::microseconds since(std::chrono::steady_clock::time_point start,
                                std::chrono::steady_clock::time_point end) {
    return std::chrono::duration_cast<std::chrono::microseconds>(end - start);
}

} // namespace

TapSession::TapSession(Connection::Socket socket, int client, Tap& tap)
    : _tap(tap),
      _clientNumber(client),
      _client(std::make_shared<Connection>(std::move(socket))),
      _retry(tap._io) {}

void TapSession::start() {
    Connection::Socket socket(_tap._io);
    const asio::error_code error = connectAtOnce(socket, _tap._address);
    if (error == asio::error::try_again) {
        _retry.expires_after(retryPause);
        _retry.async_wait([self = shared_from_this()](const asio::error_code& cancelled) {
            if (!cancelled) {
                self->start();
            }
        });
        return;
    }
    _tap.tellChange(error);
    if (error) {
        _client->close();
    } else {
        passBytes(std::move(socket));
    }
}

void TapSession::passBytes(Connection::Socket toEngine) {
    const auto self = shared_from_this();
    _engine = std::make_shared<Connection>(std::move(toEngine));
    Connection::Handlers client;
    client.received = [self](std::string_view bytes) { self->requested(bytes); };
    client.ended = [self](bool isGone) { self->clientEnded(isGone); };
    client.drained = [self] { self->_engine->resume(); };
    Connection::Handlers engine;
    engine.received = [self](std::string_view bytes) { self->answered(bytes); };
    engine.ended = [self](bool isGone) { self->engineEnded(isGone); };
    engine.drained = [self] { self->_client->resume(); };
    _client->start(std::move(client));
    _engine->start(std::move(engine));
}

void TapSession::close() {
    reportRest(Reply::End::Close);
    _retry.cancel();
    _client->close();
    if (_engine) {
        _engine->close();
    }
}

void TapSession::requested(std::string_view bytes) {
    _arrival = Clock::now();
    _engine->send({std::chrono::microseconds(0), std::string(bytes)});
    while (_client->isOpen() && _requests.add(bytes)) {
        addRequest(_requests.take());
    }
    if (_engine->unsent() > maxUnsent) {
        _client->pause();
    }
}

void TapSession::addRequest(const std::string& text) {
    Pending pending = newPending(text);
    pending.fault = _tap._faults.next();
    if (pending.fault) {
        pending.exchange.fault = pending.fault->text();
    }
    const bool resets = pending.fault && pending.fault->resets();
    _pending.push_back(std::move(pending));
    if (_pending.size() > maxPending) {
        _tap._reports.add(_pending.front().exchange);
        _pending.pop_front();
    }
    if (resets) {
        _pending.back().exchange.reply.end = Reply::End::Reset;
        close();
    }
}

TapSession::Pending TapSession::newPending(const std::string& request) const {
    Pending pending;
    pending.exchange.client = _clientNumber;
    pending.exchange.time = std::chrono::system_clock::now();
    pending.exchange.request = request;
    pending.asked = _arrival;
    pending.lastPiece = _arrival;
    return pending;
}

void TapSession::answered(std::string_view bytes) {
    _arrival = Clock::now();
    while (!bytes.empty() && _client->isOpen()) {
        if (_pending.empty()) {
            _pending.push_back(newPending(""));
        }
        const std::string_view unread = bytes;
        const bool isComplete = _answers.add(bytes);
        addAnswer(unread.substr(0, unread.size() - bytes.size()), isComplete);
    }
    if (!_client->isOpen()) {
        // A fault has closed the connection.
        reportRest(Reply::End::Close);
    }
    if (_client->unsent() > maxUnsent) {
        _engine->pause();
    }
}

void TapSession::addAnswer(std::string_view bytes, bool isComplete) {
    Pending& pending = _pending.front();
    if (!pending.fault) {
        pass(pending, bytes);
    }
    if (!isComplete) {
        return;
    }
    pending.exchange.engineTook = since(pending.asked, _arrival);
    if (pending.fault) {
        spoil(pending);
    }
    _answers.take();
    _tap._reports.add(pending.exchange);
    _pending.pop_front();
}

void TapSession::pass(Pending& pending, std::string_view bytes) {
    const auto wait = since(std::exchange(pending.lastPiece, _arrival), _arrival);
    pending.exchange.reply.pieces.push_back({wait, std::string(bytes)});
    _client->send({std::chrono::microseconds(0), std::string(bytes)});
}

void TapSession::spoil(Pending& pending) {
    Reply reply = _tap._faults.apply(*pending.fault, _answers.message());
    for (const Reply::Piece& piece : reply.pieces) {
        _client->send(piece);
    }
    if (reply.end == Reply::End::Close) {
        _client->closeWhenSent();
        _engine->close();
    }
    if (!reply.pieces.empty()) {
        reply.pieces.front().wait += pending.exchange.engineTook;
    }
    pending.exchange.reply = std::move(reply);
}

void TapSession::clientEnded(bool isGone) {
    if (!isGone) {
        // It may still read answers.
        _engine->endSending();
        return;
    }
    reportRest(Reply::End::Open);
    _client->close();
    _engine->closeWhenSent();
}

void TapSession::engineEnded(bool isGone) {
    if (!_pending.empty() && _pending.front().fault && !_answers.message().empty()) {
        // There is no complete answer to spoil.
        pass(_pending.front(), _answers.take());
    }
    if (!isGone) {
        // It may still read requests.
        _client->endSending();
        return;
    }
    reportRest(Reply::End::Close);
    _client->closeWhenSent();
    _engine->close();
}

// Reports what the end of the connection has interrupted. `end` is what the client saw of it.
void TapSession::reportRest(Reply::End end) {
    if (!_requests.message().empty()) {
        _pending.push_back(newPending(_requests.take()));
        _pending.back().exchange.isComplete = false;
    }
    for (Pending& pending : std::exchange(_pending, {})) {
        if (pending.exchange.reply.end == Reply::End::Open) {
            pending.exchange.reply.end = end;
        }
        _tap._reports.add(pending.exchange);
    }
}

} // namespace azubsim
