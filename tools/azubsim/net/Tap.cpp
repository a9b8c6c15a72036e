#include "tools/azubsim/net/Tap.h"

#include <poll.h>
#include <unistd.h>

#include <utility>

#include "tools/common/Error.h"
#include "tools/common/Printable.h"

namespace azubsim {

namespace {

// Starts the name of a tap's side of a connection. The zero byte keeps it out of the file system.
const std::string namePrefix("\0azubsim", 8);

Address toEngineAddress(const std::string& path) {
    try {
        return toAddress(path);
    } catch (const tools::Error& e) {
        throw tools::Error("cannot connect to " + path + ": " + e.what());
    }
}

// The names of the taps through which a client comes: "/NAME/NAME/", or nothing.
std::string tapsBefore(const Socket& socket) {
    asio::error_code ignored;
    const std::string name = socket.remote_endpoint(ignored).path();
    if (name.compare(0, namePrefix.size(), namePrefix) != 0) {
        return "";
    }
    return name.substr(namePrefix.size(), name.find('#') - namePrefix.size());
}

bool hasLeft(Socket& socket) {
    pollfd polled{socket.native_handle(), 0, 0};
    return poll(&polled, 1, 0) > 0 && (polled.revents & POLLHUP) != 0;
}

} // namespace

Tap::Tap(asio::io_context& io, std::string path, FaultPlan& faults, Reports& reports)
    : _io(io),
      _path(std::move(path)),
      _address(toEngineAddress(_path)),
      _shared{faults, reports},
      _name('/' + std::to_string(getpid()) + '.') {}

std::shared_ptr<Connection> Tap::serve(Socket& socket, int client) {
    const std::string taps = tapsBefore(socket);
    const std::string name = namePrefix + taps + _name;
    if (taps.find(_name) != std::string::npos) {
        reportRing();
        socket.close();
        return nullptr;
    }
    Socket engine(_io);
    const asio::error_code error =
        connectAtOnce(engine, _address, name + '#' + std::to_string(client));
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

void Tap::reportRing() {
    if (!std::exchange(_hasCutRing, true)) {
        _shared.reports.screen().warn("the engine at " + _path +
                                      " leads back to this tap; such clients are disconnected");
    }
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
