#pragma once

#include <memory>
#include <string_view>

#include "tools/azubsim/Framer.h"
#include "tools/azubsim/Session.h"
#include "tools/azubsim/Simulator.h"

namespace azubsim {

/// A client of the simulated engine.
class EngineSession : public Session, public std::enable_shared_from_this<EngineSession> {
public:
    EngineSession(Connection::Socket socket, int client, Simulator& simulator);

    void start() override;
    void close() override { _connection->close(); }

private:
    void received(std::string_view bytes);
    void reply(Reply reply);

    std::shared_ptr<Connection> _connection;
    int _client;
    Simulator& _simulator;
    Framer _requests;
};

} // namespace azubsim
