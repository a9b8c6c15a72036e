// A whole exchange through the public class, log lines included. The answer lies in the socket
// before it is asked for, so that one thread does everything and all of its allocations are
// counted.

#include <unistd.h>

#include "benchmarks/parts/Listener.h"
#include "benchmarks/parts/Measure.h"
#include "lipsyncapi/Service.h"
#include "tests/support/Frames.h"
#include "tests/support/Silence.h"

namespace {

using benchmarks::Listener;
using velta::zub::lipsyncapi::Service;

template <typename Call>
void exchange(benchmark::State& state, const std::string& answer, const Call& call) {
    const tests::Silence silence;
    const Listener listener;
    Service service;
    benchmarks::check(service.connect(listener.path()).isSuccess(), "the service connects");
    const int far = listener.far();
    char request[256];
    benchmarks::measure(state, [&] {
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
