#pragma once

#include <functional>
#include <memory>

#include "tools/azubsim/net/Connection.h"
#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

/// Sets the reply to `request`.
using Respond = std::function<void(Exchange&)>;

/// Answers the requests of a client until it leaves or a reply closes the connection.
std::shared_ptr<Connection> answerRequests(Socket socket, int client, const Respond& respond);

} // namespace azubsim
