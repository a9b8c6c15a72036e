#include "tools/azubsim/Tap.h"

#include "tools/azubsim/SocketFile.h"
#include "tools/azubsim/TapSession.h"

namespace azubsim {

bool Tap::open(std::string& error) {
    return toAddress(_path, _address, error);
}

std::shared_ptr<Session> Tap::newSession(Connection::Socket socket, int client) {
    return std::make_shared<TapSession>(std::move(socket), client, *this);
}

void Tap::tellChange(const asio::error_code& error) {
    if (error == _lastError) {
        return;
    }
    if (error) {
        _reports.screen().warn("cannot connect to the engine at " + _path + ": " + error.message() +
                               "; clients are disconnected until it is back");
    } else {
        _reports.screen().say("azubsim: connected to the engine at " + _path);
    }
    _lastError = error;
}

} // namespace azubsim
