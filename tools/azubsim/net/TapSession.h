#pragma once

#include <asio/steady_timer.hpp>
#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tools/azubsim/engine/FaultPlan.h"
#include "tools/azubsim/net/Connection.h"
#include "tools/azubsim/protocol/Exchange.h"
#include "tools/azubsim/protocol/Framer.h"
#include "tools/azubsim/report/Reports.h"

namespace azubsim {

/// A client of a tap and its connection to the engine. Bytes pass as they come, except those of an
/// answer that gets a fault: they are collected first.
class TapSession : public std::enable_shared_from_this<TapSession> {
public:
    /// What all sessions of a tap share.
    struct Shared {
        FaultPlan& faults;
        Reports& reports;
        std::size_t kept = 0; ///< Bytes that they keep of exchanges.
    };

    TapSession(Socket client, Socket engine, int number, Shared& shared);

    /// Passes bytes until one side ends. Returns the client's connection.
    std::shared_ptr<Connection> start();

private:
    /// A request whose answer is not complete.
    struct Pending {
        Exchange exchange;
        std::optional<Fault> fault;
        tools::Time asked{};
        tools::Time lastPiece{};
        std::size_t kept = 0; ///< Bytes.
    };

    void requested(std::string_view bytes);
    void addPending(const std::string& request);
    void answered(std::string_view bytes);
    void addAnswer(std::string_view bytes, bool isComplete);
    void spoil(Pending& pending);
    void giveUpFault(Pending& pending, const char* reason);
    void clientLeft();
    void reportFirst();
    void reportRest();

    Shared& _shared;
    const int _number;         ///< Of the client.
    asio::steady_timer _limit; ///< Of the time that the engine gets after the client has left.
    const std::shared_ptr<Connection> _client;
    const std::shared_ptr<Connection> _engine;
    bool _hasClientLeft = false;
    RequestReader _requests;
    Framer _answers;
    std::deque<Pending> _pending;
    tools::Time _arrival{}; ///< When the bytes arrived that are being handled.
};

} // namespace azubsim
