#include "tools/azubsim/Server.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>
#include <vector>

#include "tools/azubsim/Protocol.h"

namespace azubsim {

namespace {

// A request is some hundred bytes; a client that sends this many without an end is cut off.
constexpr std::size_t maxRequestSize = 65536;

bool mustWait() {
    return errno == EAGAIN || errno == EINTR;
}

} // namespace

Server::Server(int listener, Handler handler) : _listener(listener), _handler(std::move(handler)) {}

Server::~Server() {
    for (const Client& client : _clients) {
        close(client.fd);
    }
}

void Server::run(int stop) {
    for (;;) {
        std::vector<pollfd> polled{{stop, POLLIN, 0}, {_listener, POLLIN, 0}};
        for (const Client& client : _clients) {
            const int events = client.out.empty() ? POLLIN : POLLOUT;
            polled.push_back({client.fd, static_cast<short>(events), 0});
        }
        if (poll(polled.data(), polled.size(), -1) < 0) {
            continue;
        }
        if (polled[0].revents != 0) {
            return;
        }
        auto revents = polled.begin() + 2;
        for (auto client = _clients.begin(); client != _clients.end(); ++revents) {
            if (serve(*client, revents->revents)) {
                ++client;
            } else {
                close(client->fd);
                client = _clients.erase(client);
            }
        }
        if (polled[1].revents != 0) {
            acceptClient();
        }
    }
}

void Server::acceptClient() {
    const int fd = accept4(_listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (fd >= 0) {
        _clients.push_back({fd, {}, {}, false});
    }
}

// False when the connection is over.
bool Server::serve(Client& client, short events) {
    if (events == 0) {
        return true;
    }
    if (client.out.empty() && !readRequests(client)) {
        return false;
    }
    return writeAnswers(client);
}

bool Server::readRequests(Client& client) {
    char chunk[4096];
    const ssize_t n = read(client.fd, chunk, sizeof(chunk));
    if (n <= 0) {
        return n < 0 && mustWait();
    }
    client.in.append(chunk, static_cast<std::size_t>(n));
    std::size_t end;
    while (!client.closing && (end = client.in.find(endMarker)) != std::string::npos) {
        const Reply reply = _handler(client.in.substr(0, end));
        client.in.erase(0, end + std::char_traits<char>::length(endMarker));
        client.out += reply.bytes;
        client.closing = reply.close;
    }
    return client.in.size() <= maxRequestSize;
}

bool Server::writeAnswers(Client& client) {
    while (!client.out.empty()) {
        const ssize_t n = send(client.fd, client.out.data(), client.out.size(), MSG_NOSIGNAL);
        if (n < 0) {
            return mustWait();
        }
        client.out.erase(0, static_cast<std::size_t>(n));
    }
    return !client.closing;
}

} // namespace azubsim
