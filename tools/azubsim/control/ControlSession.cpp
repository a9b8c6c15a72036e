#include "tools/azubsim/control/ControlSession.h"

#include <utility>

#include "tools/azubsim/control/Command.h"
#include "tools/common/Error.h"

namespace azubsim {

ControlSession::ControlSession(Connection::Socket socket, Execute execute)
    : _connection(std::make_shared<Connection>(std::move(socket))), _execute(std::move(execute)) {}

void ControlSession::start() {
    const auto self = shared_from_this();
    Connection::Handlers handlers;
    handlers.received = [self](std::string_view bytes) { self->received(bytes); };
    handlers.ended = [self](bool) { self->close(); };
    handlers.drained = [] {};
    _connection->start(std::move(handlers));
}

void ControlSession::received(std::string_view bytes) {
    _line += bytes;
    const std::size_t size = _line.find('\n');
    if (size == std::string::npos && _line.size() < Command::maxLine) {
        return;
    }
    std::string answer;
    try {
        answer = accepted + _execute(_line.substr(0, size));
    } catch (const tools::Error& e) {
        answer = refused + std::string(e.what());
    }
    if (answer.back() != '\n') {
        answer += '\n';
    }
    _connection->send({std::chrono::microseconds(0), answer});
    _connection->closeWhenSent();
}

} // namespace azubsim
