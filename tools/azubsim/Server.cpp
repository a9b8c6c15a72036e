#include "tools/azubsim/Server.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace azubsim {

namespace {

// A request has about a hundred bytes; a client with a longer unfinished one is disconnected.
constexpr std::size_t maxRequestSize = 65536;

// No more requests are read from a client with more unwritten pieces than this.
constexpr std::size_t maxQueuedPieces = 64;

// Most bytes written to one client before the other clients are served.
constexpr std::size_t maxBytesInARow = 262144;

// Pause after a failed accept, for example when the process is out of descriptors.
constexpr std::chrono::milliseconds acceptPause{100};

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

void Server::watch(int descriptor, Watcher watcher) {
    _watched.push_back({descriptor, std::move(watcher)});
}

void Server::run() {
    while (!_isStopped) {
        std::vector<pollfd> polled;
        poll(polled);
        auto ready = polled.begin();
        if (ready->revents != 0) {
            acceptClient();
        }
        ++ready;
        for (Watched& watched : _watched) {
            if (watched.fd >= 0 && ready->revents != 0 && !watched.watcher()) {
                watched.fd = -1;
            }
            ++ready;
        }
        // A client that was just accepted is not in `polled`.
        for (Client& client : _clients) {
            if (ready == polled.end()) {
                break;
            }
            serve(client, ready->revents);
            ++ready;
        }
        _clients.remove_if([](const Client& client) {
            if (client.isOver) {
                close(client.fd);
            }
            return client.isOver;
        });
    }
}

bool Server::isListening() const {
    return Clock::now() >= _listenAgain;
}

// Fills `polled` with the listener, then the watched descriptors, then the clients. Waits until one
// is ready, a piece is due or the accept pause ends. Negative descriptors are ignored.
void Server::poll(std::vector<pollfd>& polled) {
    const Clock::time_point now = Clock::now();
    Clock::time_point wakeUp = Clock::time_point::max();
    if (!isListening()) {
        wakeUp = _listenAgain;
    }
    polled.push_back({isListening() ? _listener : -1, POLLIN, 0});
    for (const Watched& watched : _watched) {
        polled.push_back({watched.fd, POLLIN, 0});
    }
    for (const Client& client : _clients) {
        const bool isFull = client.isClosing || client.out.size() > maxQueuedPieces;
        short events = isFull ? 0 : POLLIN;
        if (!client.out.empty() && client.due <= now) {
            events = static_cast<short>(events | POLLOUT);
        } else if (!client.out.empty()) {
            wakeUp = std::min(wakeUp, client.due);
        }
        polled.push_back({client.fd, events, 0});
    }
    timespec timeout{};
    if (wakeUp != Clock::time_point::max()) {
        const auto wait = std::max(wakeUp - now, Clock::duration::zero());
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(wait);
        timeout.tv_sec = seconds.count();
        timeout.tv_nsec = static_cast<long>(std::chrono::nanoseconds(wait - seconds).count());
    }
    const bool hasTimeout = wakeUp != Clock::time_point::max();
    if (ppoll(polled.data(), polled.size(), hasTimeout ? &timeout : nullptr, nullptr) < 0) {
        for (pollfd& entry : polled) {
            entry.revents = 0;
        }
    }
}

void Server::acceptClient() {
    const int fd = accept4(_listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (fd >= 0) {
        _clients.emplace_back();
        _clients.back().number = ++_lastNumber;
        _clients.back().fd = fd;
    } else if (!mustWait()) {
        _listenAgain = Clock::now() + acceptPause;
    }
}

void Server::serve(Client& client, short events) {
    if ((events & (POLLIN | POLLHUP | POLLERR)) != 0) {
        read(client);
    }
    if (!client.isOver) {
        write(client);
    }
}

void Server::read(Client& client) {
    if (client.isClosing) {
        // The client hung up before its answer was complete.
        client.isOver = true;
        return;
    }
    // Only peek at first: to reset the connection, the socket is closed with unread bytes.
    char chunk[4096];
    const ssize_t n = recv(client.fd, chunk, sizeof(chunk), MSG_PEEK);
    if (n <= 0) {
        client.isOver = n == 0 || !mustWait();
        return;
    }
    client.in.append(chunk, static_cast<std::size_t>(n));
    std::size_t end;
    while (!client.isClosing && (end = client.in.find(endMarker)) != std::string::npos) {
        Reply reply = _handler(client.number, client.in.substr(0, end));
        client.in.erase(0, end + std::strlen(endMarker));
        if (reply.end == Reply::End::Reset) {
            client.isOver = true;
            return;
        }
        enqueue(client, std::move(reply));
    }
    recv(client.fd, chunk, static_cast<std::size_t>(n), 0);
    client.isOver = client.in.size() > maxRequestSize;
}

void Server::enqueue(Client& client, Reply reply) {
    for (Reply::Piece& piece : reply.pieces) {
        if (client.out.empty()) {
            client.due = Clock::now() + piece.wait;
        }
        client.out.push_back(std::move(piece));
    }
    client.isClosing = reply.end == Reply::End::Close;
}

// Writes due pieces until the socket is full or the other clients must be served.
void Server::write(Client& client) {
    std::size_t budget = maxBytesInARow;
    while (!client.out.empty() && client.due <= Clock::now() && budget > 0) {
        const std::string& bytes = client.out.front().bytes;
        const std::size_t size = std::min(bytes.size() - client.written, budget);
        const ssize_t n = send(client.fd, bytes.data() + client.written, size, MSG_NOSIGNAL);
        if (n < 0) {
            client.isOver = !mustWait();
            return;
        }
        client.written += static_cast<std::size_t>(n);
        budget -= static_cast<std::size_t>(n);
        if (client.written == bytes.size()) {
            nextPiece(client);
        }
    }
    client.isOver = client.isClosing && client.out.empty();
}

void Server::nextPiece(Client& client) {
    client.out.pop_front();
    client.written = 0;
    if (!client.out.empty()) {
        client.due = Clock::now() + client.out.front().wait;
    }
}

} // namespace azubsim
