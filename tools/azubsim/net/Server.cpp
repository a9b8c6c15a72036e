#include "tools/azubsim/net/Server.h"

#include <utility>

namespace azubsim {

namespace {

// Pause after a failed accept, for example when the process is out of descriptors.
constexpr std::chrono::milliseconds acceptPause{100};

} // namespace

Server::Server(asio::io_context& io, std::string path, SessionFactory newSession)
    : _file(io), _pause(io), _path(std::move(path)), _newSession(std::move(newSession)) {}

void Server::listen(bool isPrivate) {
    _file.listen(_path, isPrivate);
    accept();
}

void Server::close() {
    _file.close();
    _pause.cancel();
    for (const std::weak_ptr<Session>& weak : std::exchange(_sessions, {})) {
        if (const auto session = weak.lock()) {
            session->close();
        }
    }
}

std::size_t Server::clients() {
    removeEndedSessions();
    return _sessions.size();
}

void Server::accept() {
    _file.acceptor().async_accept([this](const asio::error_code& error, Connection::Socket socket) {
        accepted(error, std::move(socket));
    });
}

void Server::accepted(const asio::error_code& error, Connection::Socket socket) {
    // The socket of a client that was accepted just before `close` is closed here.
    if (!_file.acceptor().is_open() || error == asio::error::operation_aborted) {
        return;
    }
    if (error) {
        _pause.expires_after(acceptPause);
        _pause.async_wait([this](const asio::error_code& cancelled) {
            if (!cancelled) {
                accept();
            }
        });
        return;
    }
    removeEndedSessions();
    if (const auto session = _newSession(std::move(socket), ++_lastClient)) {
        _sessions.push_back(session);
        session->start();
    }
    accept();
}

void Server::removeEndedSessions() {
    _sessions.remove_if([](const std::weak_ptr<Session>& session) { return session.expired(); });
}

} // namespace azubsim
