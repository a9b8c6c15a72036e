#include "tools/azubsim/net/Tap.h"

#include <sys/un.h>
#include <unistd.h>

#include <utility>

#include "tools/azubsim/net/TapSession.h"
#include "tools/common/Error.h"
#include "tools/common/Text.h"
#include "tools/common/Time.h"

namespace azubsim {

namespace {

// How soon to try again if the engine's queue of connections is full.
constexpr std::chrono::milliseconds retryPause{10};

// Starts the name of a tap's side of a connection. The zero byte keeps it out of the file system.
const std::string namePrefix("\0azubsim", 8);

// Room for the number of the connection, which makes the name unique.
constexpr std::size_t maxName = sizeof(sockaddr_un::sun_path) - 20;

Address toEngineAddress(const std::string& path) {
    try {
        return toAddress(path);
    } catch (const tools::Error& e) {
        throw tools::Error("cannot connect to " + path + ": " + e.what());
    }
}

// The names of the taps through which a client comes: "/NAME/NAME", or nothing.
std::string tapsBefore(const Connection::Socket& socket) {
    asio::error_code ignored;
    const std::string name = socket.remote_endpoint(ignored).path();
    if (name.compare(0, namePrefix.size(), namePrefix) != 0) {
        return "";
    }
    return name.substr(namePrefix.size(), name.find('#') - namePrefix.size());
}

} // namespace

Tap::Tap(asio::io_context& io, std::string path, FaultPlan& faults, Reports& reports)
    : _io(io),
      _path(std::move(path)),
      _address(toEngineAddress(_path)),
      _faults(faults),
      _reports(reports),
      _name(tools::printed("/%x.%x", static_cast<unsigned int>(getpid()),
                           static_cast<unsigned int>(tools::now().count()))),
      _retry(io) {}

std::shared_ptr<Session> Tap::newSession(Connection::Socket socket, int client) {
    const std::string taps = tapsBefore(socket);
    const std::string name = namePrefix + taps + _name;
    if (taps.find(_name) != std::string::npos || name.size() > maxName) {
        if (!std::exchange(_hasCutRing, true)) {
            _reports.screen().warn("the engine at " + _path +
                                   " leads back to this tap, or through too many taps; such "
                                   "clients are disconnected");
        }
        return nullptr;
    }
    return std::make_shared<TapSession>(std::move(socket), client,
                                        name + '#' + std::to_string(++_connections), *this);
}

void Tap::connect(const std::shared_ptr<TapSession>& session) {
    _waiting.push_back(session);
    if (_waiting.size() == 1) {
        connectWaiting();
    }
}

void Tap::connectWaiting() {
    while (!_waiting.empty()) {
        const auto session = _waiting.front().lock();
        if (session && session->isWaiting()) {
            Connection::Socket socket(_io);
            const asio::error_code error = connectAtOnce(socket, _address, session->name());
            if (error == asio::error::try_again) {
                _retry.expires_after(retryPause);
                _retry.async_wait([this](const asio::error_code& cancelled) {
                    if (!cancelled) {
                        connectWaiting();
                    }
                });
                return;
            }
            reportConnectState(error);
            if (error) {
                session->close();
            } else {
                session->passBytes(std::move(socket));
            }
        }
        _waiting.pop_front();
    }
}

void Tap::reportConnectState(const asio::error_code& error) {
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
