#pragma once

#include <asio/steady_timer.hpp>
#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tools/azubsim/net/Tap.h"
#include "tools/azubsim/protocol/Exchange.h"
#include "tools/azubsim/protocol/Framer.h"

namespace azubsim {

/// A client of a tap and its connection to the engine. Bytes pass as they come, except those of an
/// answer that gets a fault: they are collected first.
class TapSession : public Session, public std::enable_shared_from_this<TapSession> {
public:
    /// `name` is the address of this side of the connection to the engine.
    TapSession(Connection::Socket socket, int client, std::string name, Tap& tap);
    ~TapSession() override;

    void start() override;
    void close() override;

    /// The client has no connection to the engine yet, and has not left.
    bool isWaiting() const { return !_engine && _client->isOpen(); }
    void passBytes(Connection::Socket toEngine);
    const std::string& name() const { return _name; }

private:
    using Clock = std::chrono::steady_clock;

    /// A request whose answer is not complete.
    struct Pending {
        Exchange exchange;
        std::optional<Fault> fault;
        Clock::time_point asked;
        Clock::time_point lastPiece;
        std::size_t kept = 0; ///< Bytes.
    };

    void requested(std::string_view bytes);
    void addRequest();
    void answered(std::string_view bytes);
    void addAnswer(std::string_view bytes, bool isComplete);
    bool keep(Pending& pending, std::size_t size);
    void spoil(Pending& pending);
    void giveUpFault(Pending& pending, const char* reason);
    void clientEnded(bool isGone);
    void limit();
    void engineEnded(bool isGone);
    void addPending(const std::string& request);
    void reportFirst();
    void reportRest(bool closes);

    Tap& _tap;
    int _clientNumber;
    std::string _name;
    std::shared_ptr<Connection> _client;
    std::shared_ptr<Connection> _engine; ///< Null until it is connected.
    asio::steady_timer _limit;           ///< Of the time that the engine gets to read the rest.
    Framer _requests;
    Framer _answers;
    std::string _request; ///< As much of it as has arrived.
    std::deque<Pending> _pending;
    Clock::time_point _arrival; ///< When the bytes arrived that are being handled.
};

} // namespace azubsim
