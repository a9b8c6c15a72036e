#include "tools/azubsim/net/Server.h"

#include <unistd.h>

#include <utility>

#include "tools/azubsim/protocol/Framer.h"
#include "tools/common/Error.h"

namespace azubsim {

namespace {

using tools::Error;
using tools::require;

// Before the next attempt to serve a client that has to wait, or to accept one, which fails for
// example when the process is out of descriptors.
constexpr std::chrono::milliseconds pauseTime{10};

// No more requests are read from a client that has not read this many bytes of its answers.
constexpr std::size_t maxUnsentAnswers = 65536;

void answer(Connection& connection, Exchange exchange, const Respond& respond) {
    exchange.time = tools::now();
    respond(exchange);
    for (Reply::Piece& piece : exchange.reply.pieces) {
        connection.send(std::move(piece));
    }
    if (exchange.reply.closes) {
        connection.closeWhenSent();
    }
}

} // namespace

std::shared_ptr<Connection> answerRequests(Socket socket, int client, const Respond& respond) {
    auto connection = std::make_shared<Connection>(std::move(socket));
    // The handlers are destroyed when the connection is closed.
    Connection::Handlers handlers;
    handlers.received = [=, requests = std::make_shared<RequestReader>()](std::string_view bytes) {
        while (connection->isOpen() && !bytes.empty()) {
            if (const auto request = requests->next(bytes)) {
                Exchange exchange;
                exchange.client = client;
                exchange.request = *request;
                answer(*connection, std::move(exchange), respond);
            }
        }
        if (connection->unsent() > maxUnsentAnswers) {
            connection->pause();
        }
    };
    handlers.ended = [=] { connection->closeWhenSent(); };
    handlers.drained = [=] { connection->resume(); };
    connection->start(std::move(handlers));
    return connection;
}

Server::Server(asio::io_context& io, std::string path, Serve serve)
    : _path(std::move(path)), _serve(std::move(serve)), _acceptor(io), _client(io), _pause(io) {}

void Server::listen(bool isPrivate) {
    const std::string cannot = "cannot listen at " + _path + ": ";
    try {
        open(isPrivate);
    } catch (const Error& e) {
        throw Error(cannot + e.what());
    } catch (const asio::system_error& e) {
        close();
        throw Error(cannot + e.code().message());
    }
    accept();
}

void Server::open(bool isPrivate) {
    const Address address = toAddress(_path);
    removeStaleSocket();
    _acceptor.open(address.protocol());
    _acceptor.bind(address);
    // From here on, the file is this program's and must be removed.
    lstat(_path.c_str(), &_file);
    if (isPrivate) {
        chmod(_path.c_str(), S_IRUSR | S_IWUSR);
    }
    _acceptor.listen();
}

// Throws if anything else is there.
void Server::removeStaleSocket() {
    struct stat status {};
    if (lstat(_path.c_str(), &status) != 0) {
        return;
    }
    require(S_ISSOCK(status.st_mode), "it exists and is not a socket");
    Socket socket(_acceptor.get_executor());
    const asio::error_code error = connectAtOnce(socket, toAddress(_path));
    require(error && error != asio::error::try_again, "an engine is already listening there");
    require(error == asio::error::connection_refused, error.message());
    unlink(_path.c_str());
}

void Server::close() {
    asio::error_code ignored;
    _acceptor.close(ignored);
    _client.close(ignored);
    _pause.cancel(ignored);
    // Keep a file that another process has put in its place.
    if (isAt(_path)) {
        unlink(_path.c_str());
    }
    _file = {};
    for (const auto& weak : std::exchange(_connections, {})) {
        if (const auto connection = weak.lock()) {
            connection->close();
        }
    }
}

bool Server::isAt(const std::string& path) const {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && status.st_dev == _file.st_dev &&
           status.st_ino == _file.st_ino;
}

std::size_t Server::connected() {
    _connections.remove_if([](const auto& weak) { return weak.expired(); });
    return _connections.size();
}

void Server::accept() {
    _acceptor.async_accept(_client, [this](const asio::error_code& error) {
        if (!_acceptor.is_open() || error == asio::error::operation_aborted) {
            // A client that was accepted just before `close`.
            asio::error_code ignored;
            _client.close(ignored);
        } else if (error) {
            tryAgain();
        } else {
            ++_accepted;
            serve();
        }
    });
}

// Also tries again what has failed.
void Server::serve() {
    if (_client.is_open()) {
        if (const auto connection = _serve(_client, _accepted)) {
            connected();
            _connections.push_back(connection);
        }
    }
    if (_client.is_open()) {
        tryAgain();
    } else {
        accept();
    }
}

void Server::tryAgain() {
    _pause.expires_after(pauseTime);
    _pause.async_wait([this](const asio::error_code& cancelled) {
        if (!cancelled) {
            serve();
        }
    });
}

} // namespace azubsim
