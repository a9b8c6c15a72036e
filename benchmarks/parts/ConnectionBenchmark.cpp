// Connecting and disconnecting, with a listening socket in the same process: its accepting and
// closing is part of the time, and the time of plain sockets says how much is the system's.

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <memory>

#include "benchmarks/parts/Listener.h"
#include "benchmarks/parts/Measure.h"
#include "comms/Client.h"
#include "lipsyncapi/Service.h"
#include "tests/support/Silence.h"

namespace {

using benchmarks::Listener;
using benchmarks::measure;
using velta::zub::comms::Client;
using velta::zub::comms::Link;
using velta::zub::lipsyncapi::Service;

bool connectAndClose(const Listener& listener) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    listener.path().copy(address.sun_path, sizeof(address.sun_path) - 1);
    const int near = socket(AF_UNIX, SOCK_STREAM, 0);
    return connect(near, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
           listener.drop() && shutdown(near, SHUT_RDWR) == 0 && close(near) == 0;
}

void connectPlainSocket(benchmark::State& state) {
    const Listener listener;
    measure(state, [&] { return connectAndClose(listener); });
}
BENCHMARK(connectPlainSocket);

void connectLink(benchmark::State& state) {
    const Listener listener;
    measure(state, [&] {
        Link* link = nullptr;
        const bool isConnected =
            Client::connectUnixServer(listener.path().c_str(), link).isSuccess();
        const std::unique_ptr<Link> owner(link);
        return isConnected && listener.drop();
    });
}
BENCHMARK(connectLink);

// With two log lines, which do not reach the platform's writer.
void connectService(benchmark::State& state) {
    const tests::Silence silence;
    const Listener listener;
    Service service;
    measure(state, [&] {
        return service.connect(listener.path()).isSuccess() && listener.drop() &&
               service.disconnect().isSuccess();
    });
}
BENCHMARK(connectService);

} // namespace
