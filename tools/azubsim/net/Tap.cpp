#include "tools/azubsim/net/Tap.h"

#include <poll.h>

#include <utility>

#include "tools/common/Error.h"
#include "tools/common/Text.h"

namespace azubsim {

namespace {

Address toEngineAddress(const std::string& path) {
    try {
        return toAddress(path);
    } catch (const tools::Error& e) {
        throw tools::Error("cannot connect to " + path + ": " + e.what());
    }
}

bool hasLeft(Socket& socket) {
    pollfd polled{socket.native_handle(), 0, 0};
    return poll(&polled, 1, 0) > 0 && (polled.revents & POLLHUP) != 0;
}

} // namespace

Tap::Tap(asio::io_context& io, std::string path, FaultPlan& faults, Reports& reports)
    : _io(io), _path(std::move(path)), _address(toEngineAddress(_path)), _shared{faults, reports} {}

std::shared_ptr<Connection> Tap::serve(Socket& socket, int client) {
    Socket engine(_io);
    const asio::error_code error = connectAtOnce(engine, _address);
    if (error == asio::error::try_again) {
        if (hasLeft(socket)) {
            socket.close();
        }
        return nullptr;
    }
    reportConnectState(error);
    if (error) {
        socket.close();
        return nullptr;
    }
    return std::make_shared<TapSession>(std::move(socket), std::move(engine), client, _shared)
        ->start();
}

void Tap::reportConnectState(const asio::error_code& error) {
    if (error == _lastError) {
        return;
    }
    if (error) {
        _shared.reports.screen().warn("cannot connect to the engine at " + _path + ": " +
                                      error.message() +
                                      "; clients are disconnected until it is back");
    } else {
        _shared.reports.screen().say("azubsim: connected to the engine at " +
                                     tools::printable(_path));
    }
    _lastError = error;
}

} // namespace azubsim
