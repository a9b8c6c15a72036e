#include "tools/azubsim/net/TapSession.h"

#include <utility>

namespace azubsim {

namespace {

// How long an engine may take to read what a client sent before it left.
constexpr std::chrono::seconds timeForRest{2};

} // namespace

TapSession::TapSession(Connection::Socket socket, int client, std::string name, Tap& tap)
    : _tap(tap),
      _clientNumber(client),
      _name(std::move(name)),
      _client(std::make_shared<Connection>(std::move(socket))),
      _limit(tap._io) {}

TapSession::~TapSession() {
    for (const Pending& pending : _pending) {
        _tap._kept -= pending.kept;
    }
}

void TapSession::start() {
    const auto self = shared_from_this();
    Connection::Handlers client;
    client.received = [self](std::string_view bytes) { self->requested(bytes); };
    client.ended = [self](bool isGone) { self->clientEnded(isGone); };
    client.left = [self] { self->limit(); };
    client.drained = [self] {
        if (self->_engine) {
            self->_engine->resume();
        }
    };
    // There is nobody yet to whom bytes could be passed.
    _client->pause();
    _client->start(std::move(client));
    _tap.connect(self);
}

void TapSession::passBytes(Connection::Socket toEngine) {
    const auto self = shared_from_this();
    _engine = std::make_shared<Connection>(std::move(toEngine));
    Connection::Handlers engine;
    engine.received = [self](std::string_view bytes) { self->answered(bytes); };
    engine.ended = [self](bool isGone) { self->engineEnded(isGone); };
    engine.drained = [self] { self->_client->resume(); };
    _engine->start(std::move(engine));
    _client->resume();
}

void TapSession::close() {
    reportRest(true);
    _limit.cancel();
    _client->close();
    if (_engine) {
        _engine->close();
    }
}

void TapSession::clientEnded(bool isGone) {
    if (!_engine) {
        close();
    } else if (isGone) {
        reportRest(false);
        _client->close();
        _engine->closeWhenSent();
        limit();
    } else {
        // It may still read answers.
        _engine->endSending();
    }
}

// The client has left: the engine must not keep this session for ever.
void TapSession::limit() {
    if (!_engine) {
        close();
        return;
    }
    _limit.expires_after(timeForRest);
    // Until the engine's connection is closed, its handlers keep this session.
    _limit.async_wait([weak = weak_from_this()](const asio::error_code& cancelled) {
        const auto self = weak.lock();
        if (self && !cancelled) {
            self->close();
        }
    });
}

void TapSession::engineEnded(bool isGone) {
    if (!_pending.empty()) {
        giveUpFault(_pending.front(), "no complete answer");
    }
    if (!isGone) {
        // It may still read requests.
        _client->endSending();
        return;
    }
    reportRest(true);
    _limit.cancel();
    _client->closeWhenSent();
    _engine->close();
}

} // namespace azubsim
