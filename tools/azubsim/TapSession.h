#pragma once

#include <asio/steady_timer.hpp>
#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <string_view>

#include "tools/azubsim/Exchange.h"
#include "tools/azubsim/Framer.h"
#include "tools/azubsim/Tap.h"

namespace azubsim {

/// A client of a tap and its connection to the engine. Bytes pass as they come, except those of an
/// answer that gets a fault: they are collected first.
class TapSession : public Session, public std::enable_shared_from_this<TapSession> {
public:
    TapSession(Connection::Socket socket, int client, Tap& tap);

    void start() override;
    void close() override;

private:
    using Clock = std::chrono::steady_clock;

    /// A request whose answer is not complete.
    struct Pending {
        Exchange exchange;
        std::optional<Fault> fault;
        Clock::time_point asked;
        Clock::time_point lastPiece;
    };

    void passBytes(Connection::Socket toEngine);
    void requested(std::string_view bytes);
    void addRequest(const std::string& text);
    void answered(std::string_view bytes);
    void addAnswer(std::string_view bytes, bool isComplete);
    void pass(Pending& pending, std::string_view bytes);
    void spoil(Pending& pending);
    void clientEnded(bool isGone);
    void engineEnded(bool isGone);
    Pending newPending(const std::string& request) const;
    void reportRest(Reply::End end);

    Tap& _tap;
    int _clientNumber;
    std::shared_ptr<Connection> _client;
    std::shared_ptr<Connection> _engine; ///< Null until it is connected.
    asio::steady_timer _retry;
    Framer _requests;
    Framer _answers;
    std::deque<Pending> _pending;
    Clock::time_point _arrival; ///< When the bytes arrived that are being handled.
};

} // namespace azubsim
