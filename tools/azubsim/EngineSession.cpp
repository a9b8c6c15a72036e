#include "tools/azubsim/EngineSession.h"

#include <utility>

namespace azubsim {

namespace {

// No more requests are read from a client that has not read this many bytes of its answers.
constexpr std::size_t maxUnsentAnswers = 65536;

} // namespace

EngineSession::EngineSession(Connection::Socket socket, int client, Simulator& simulator)
    : _connection(std::make_shared<Connection>(std::move(socket))),
      _client(client),
      _simulator(simulator) {}

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
    handlers.drained = [self] { self->_connection->resume(); };
    _connection->start(std::move(handlers));
}

void EngineSession::received(std::string_view bytes) {
    while (_connection->isOpen() && _requests.add(bytes)) {
        reply(_simulator.answer(_client, _requests.take()));
    }
    if (_connection->unsent() > maxUnsentAnswers) {
        _connection->pause();
    }
}

void EngineSession::reply(Reply reply) {
    if (reply.end == Reply::End::Reset) {
        _connection->close();
        return;
    }
    for (Reply::Piece& piece : reply.pieces) {
        _connection->send(std::move(piece));
    }
    if (reply.end == Reply::End::Close) {
        _connection->closeWhenSent();
    }
}

} // namespace azubsim
