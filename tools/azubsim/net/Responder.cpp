#include "tools/azubsim/net/Responder.h"

#include <utility>

#include "tools/azubsim/protocol/Framer.h"

namespace azubsim {

namespace {

// No more requests are read from a client that has not read this many bytes of its answers.
constexpr std::size_t maxUnsentAnswers = 65536;

void answer(Connection& connection, Exchange exchange, const Respond& respond) {
    exchange.time = tools::now();
    respond(exchange);
    for (Reply::Piece& piece : exchange.reply.pieces) {
        connection.send(std::move(piece));
    }
    if (exchange.reply.closes) {
        connection.closeWhenSent();
    }
}

} // namespace

std::shared_ptr<Connection> answerRequests(Socket socket, int client, const Respond& respond) {
    auto connection = std::make_shared<Connection>(std::move(socket));
    // The handlers are destroyed when the connection is closed.
    Connection::Handlers handlers;
    handlers.received = [=, requests = std::make_shared<RequestReader>()](std::string_view bytes) {
        while (connection->isOpen() && !bytes.empty()) {
            if (const auto request = requests->next(bytes)) {
                Exchange exchange;
                exchange.client = client;
                exchange.request = *request;
                answer(*connection, std::move(exchange), respond);
            }
        }
        if (connection->unsent() > maxUnsentAnswers) {
            connection->pause();
        }
    };
    handlers.ended = [=] { connection->closeWhenSent(); };
    handlers.drained = [=] { connection->resume(); };
    connection->start(std::move(handlers));
    return connection;
}

} // namespace azubsim
