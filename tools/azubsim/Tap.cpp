#include "tools/azubsim/Tap.h"

#include <sys/socket.h>

#include <cerrno>

#include "tools/azubsim/SocketFile.h"
#include "tools/azubsim/TapSession.h"

namespace azubsim {

bool Tap::open(std::string& error) {
    return toAddress(_path, _address, error);
}

std::shared_ptr<Session> Tap::newSession(Connection::Socket socket, int client) {
    return std::make_shared<TapSession>(std::move(socket), client, *this);
}

asio::error_code Tap::connect(Connection::Socket& socket) {
    asio::error_code error;
    socket.open(_address.protocol(), error);
    if (!error) {
        socket.non_blocking(true, error);
    }
    // Asio takes a full queue of an engine that does not accept (EAGAIN) for a connection.
    if (!error && ::connect(socket.native_handle(), _address.data(),
                            static_cast<socklen_t>(_address.size())) != 0) {
        error.assign(errno, asio::system_category());
    }
    return error;
}

void Tap::tellChange(const asio::error_code& error) {
    if (error == _lastError) {
        return;
    }
    if (error) {
        _reports.screen().warn("cannot connect to the engine at " + _path + ": " + error.message() +
                               "; closing clients until it is there");
    } else {
        _reports.screen().say("azubsim: connected to the engine at " + _path + " again");
    }
    _lastError = error;
}

} // namespace azubsim
