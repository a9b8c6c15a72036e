#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <list>
#include <string>
#include <vector>

#include <poll.h>

#include "tools/azubsim/Reply.h"

namespace azubsim {

/// Serves many clients in one thread; no client can block another.
class Server {
public:
    /// Called with a client's number and its request without the end marker.
    using Handler = std::function<Reply(int client, const std::string& request)>;

    /// Called when a descriptor is readable; returns false to stop watching it.
    using Watcher = std::function<bool()>;

    /// `listener` is a listening socket; the caller still owns it.
    Server(int listener, Handler handler);
    ~Server();

    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    void watch(int descriptor, Watcher watcher);

    /// Serves until `stop` is called from a handler or a watcher.
    void run();
    void stop() { _isStopped = true; }

private:
    using Clock = std::chrono::steady_clock;

    struct Client {
        int number = 0;
        int fd = -1;
        std::string in;
        std::deque<Reply::Piece> out;
        std::size_t written = 0; ///< Bytes of the first piece of `out`.
        Clock::time_point due;   ///< When to write that piece.
        bool isClosing = false;  ///< Close once `out` is written.
        bool isOver = false;
    };

    struct Watched {
        int fd;
        Watcher watcher;
    };

    void poll(std::vector<pollfd>& polled);
    bool isListening() const;
    void acceptClient();
    void serve(Client& client, short events);
    void read(Client& client);
    void write(Client& client);
    static void enqueue(Client& client, Reply reply);
    static void nextPiece(Client& client);

    int _listener;
    Handler _handler;
    std::vector<Watched> _watched;
    std::list<Client> _clients;
    Clock::time_point _listenAgain;
    int _lastNumber = 0;
    bool _isStopped = false;
};

} // namespace azubsim
