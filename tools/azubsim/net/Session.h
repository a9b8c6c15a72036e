#pragma once

#include <functional>
#include <memory>

#include "tools/azubsim/net/Connection.h"

namespace azubsim {

/// What happens on a client's connection. It lives as long as its connections are open.
class Session {
public:
    Session() = default;
    virtual ~Session() = default;

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    virtual void start() = 0;
    virtual void close() = 0;
};

/// Creates a session for a client and its number; null to refuse the client.
using SessionFactory = std::function<std::shared_ptr<Session>(Connection::Socket, int client)>;

} // namespace azubsim
