#pragma once

#include <functional>
#include <list>
#include <string>

namespace azubsim {

/// What is done about one request.
struct Reply {
    std::string bytes;  ///< Sent as they are.
    bool close = false; ///< Whether the connection is closed after that.
};

/// Serves many clients at once in one thread; none of them can hold up another.
class Server {
public:
    /// Called with each request, without its end marker.
    using Handler = std::function<Reply(const std::string& request)>;

    /// `listener` is a listening socket, which stays the caller's.
    Server(int listener, Handler handler);
    ~Server();

    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Serves until `stop` becomes readable.
    void run(int stop);

private:
    struct Client {
        int fd;
        std::string in;
        std::string out;
        bool closing = false;
    };

    void acceptClient();
    bool serve(Client& client, short events);
    bool readRequests(Client& client);
    static bool writeAnswers(Client& client);

    int _listener;
    Handler _handler;
    std::list<Client> _clients;
};

} // namespace azubsim
