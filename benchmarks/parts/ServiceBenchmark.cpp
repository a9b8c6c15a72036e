// Connects, and makes whole exchanges. The engine runs in the same thread, so its part is included
// in the time. The platform's log writer is replaced in LogBenchmark.cpp.

#include <unistd.h>

#include <memory>

#include "benchmarks/PlainSocket.h"
#include "benchmarks/parts/Measure.h"
#include "comms/Client.h"
#include "lipsyncapi/Service.h"
#include "tests/support/Frames.h"
#include "tests/support/Listener.h"
#include "tests/support/Silence.h"
#include "tests/support/TemporaryDirectory.h"

namespace {

using benchmarks::check;
using benchmarks::measure;
using velta::zub::comms::Client;
using velta::zub::comms::Link;
using velta::zub::lipsyncapi::Service;

class Engine {
public:
    const std::string& path() const { return _path; }

    int accept() const { return _listener.accept(); }

    // Closes the next client's connection.
    bool drop() const { return close(accept()) == 0; }

private:
    const tests::TemporaryDirectory _directory;
    const std::string _path = _directory.path() + "/engine";
    const tests::Listener _listener{_path};
};

void connectPlainSocket(benchmark::State& state) {
    const Engine engine;
    measure(state, [&] {
        const int fd = benchmarks::connectPlainly(engine.path().c_str());
        return engine.drop() && shutdown(fd, SHUT_RDWR) == 0 && close(fd) == 0;
    });
}
BENCHMARK(connectPlainSocket);

void connectLink(benchmark::State& state) {
    const Engine engine;
    measure(state, [&] {
        Link* link = nullptr;
        const bool isConnected = Client::connectUnixServer(engine.path().c_str(), link).isSuccess();
        const std::unique_ptr<Link> owner(link);
        return isConnected && engine.drop();
    });
}
BENCHMARK(connectLink);

void connectService(benchmark::State& state) {
    const tests::Silence silence;
    const Engine engine;
    const long before = tests::memory.blocks();
    long held = 0;
    Service service;
    measure(state, [&] {
        const bool isConnected = service.connect(engine.path()).isSuccess();
        held = tests::memory.blocks() - before;
        return isConnected && engine.drop() && service.disconnect().isSuccess();
    });
    state.counters["heap blocks while connected"] = static_cast<double>(held);
}
BENCHMARK(connectService);

template <typename Call>
void exchange(benchmark::State& state, const std::string& answer, const Call& call) {
    const tests::Silence silence;
    const Engine engine;
    Service service;
    check(service.connect(engine.path()).isSuccess(), "the service connects");
    const int far = engine.accept();
    char request[256];
    measure(state, [&] {
        return write(far, answer.data(), answer.size()) == static_cast<ssize_t>(answer.size()) &&
               call(service) && read(far, request, sizeof(request)) > 0;
    });
    close(far);
}

void exchangeGetAudioTs(benchmark::State& state) {
    const std::string answer = tests::timestampsFrame(
        "16963814587331346432", "16963814588104458240", "16963814587674943488", "60");
    exchange(state, answer, [](Service& service) {
        velta::zub::common::LipSyncNtpTimestamps audio;
        return service.getAudioTimestamps(audio).isSuccess() && audio.jbmCurrentDepth == 60;
    });
}
BENCHMARK(exchangeGetAudioTs);

void exchangeSetAudioDelay(benchmark::State& state) {
    exchange(state, tests::delayFrame("1000"),
             [](Service& service) { return service.setAudioDelayMargin(40).isSuccess(); });
}
BENCHMARK(exchangeSetAudioDelay);

} // namespace
