#include "tools/azubsim/net/EngineSession.h"

#include <cstring>
#include <utility>

namespace azubsim {

namespace {

// No more requests are read from a client that has not read this many bytes of its answers.
constexpr std::size_t maxUnsentAnswers = 65536;

} // namespace

EngineSession::EngineSession(Connection::Socket socket, int client, Answer answer)
    : _connection(std::make_shared<Connection>(std::move(socket))),
      _client(client),
      _answer(std::move(answer)) {}

void EngineSession::start() {
    const auto self = shared_from_this();
    Connection::Handlers handlers;
    handlers.received = [self](std::string_view bytes) { self->received(bytes); };
    handlers.ended = [self](bool isGone) {
        if (isGone) {
            self->close();
        } else {
            self->_connection->closeWhenSent();
        }
    };
    handlers.left = [self] { self->close(); };
    handlers.drained = [self] { self->_connection->resume(); };
    _connection->start(std::move(handlers));
}

void EngineSession::received(std::string_view bytes) {
    while (_connection->isOpen() && !bytes.empty()) {
        const Framer::Part part = _framer.next(bytes);
        _request += part.bytes;
        if (part.isEnd) {
            _request.resize(_request.size() - std::strlen(endMarker));
        }
        // A request that is too long is answered as it is: it is not valid.
        if (part.isEnd || _request.size() > maxRequestSize) {
            reply();
        }
    }
    if (_connection->unsent() > maxUnsentAnswers) {
        _connection->pause();
    }
}

void EngineSession::reply() {
    Exchange exchange;
    exchange.client = _client;
    exchange.time = tools::now();
    exchange.request = std::exchange(_request, "");
    _answer(exchange);
    for (Reply::Piece& piece : exchange.reply.pieces) {
        _connection->send(std::move(piece));
    }
    if (exchange.reply.closes) {
        _connection->closeWhenSent();
    }
}

} // namespace azubsim
