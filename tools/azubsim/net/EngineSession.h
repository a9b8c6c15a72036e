#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "tools/azubsim/net/Session.h"
#include "tools/azubsim/protocol/Exchange.h"
#include "tools/azubsim/protocol/Framer.h"

namespace azubsim {

/// A client of the simulated engine or of a replay.
class EngineSession : public Session, public std::enable_shared_from_this<EngineSession> {
public:
    /// Sets the reply to `request`, and reports the exchange.
    using Answer = std::function<void(Exchange&)>;

    EngineSession(Connection::Socket socket, int client, Answer answer);

    void start() override;
    void close() override { _connection->close(); }

private:
    void received(std::string_view bytes);
    void reply();

    std::shared_ptr<Connection> _connection;
    int _client;
    Answer _answer;
    Framer _framer;
    std::string _request; ///< As much of it as has arrived.
};

} // namespace azubsim
