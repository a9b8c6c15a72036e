#include "benchmarks/parts/Measure.h"
#include "cmdfrmwrk/Peer.h"
#include "lipsyncapi/Service.h"

namespace {

using benchmarks::measure;
using velta::zub::cmdfrmwrk::Peer;
using velta::zub::comms::Link;
using velta::zub::comms::TextProtocol;
using velta::zub::lipsyncapi::Service;

// A failure with a chain of `causes` causes, built as the layers do.
Peer::Result failure(long causes) {
    Peer::Result result = Peer::ResultCode::ConnectionClosedByDistant;
    for (long cause = 0; cause < causes; ++cause) {
        result = Peer::Result(Peer::ResultCode::ProtocolError) << result;
    }
    return result;
}

void buildFailure(benchmark::State& state) {
    measure(state, [&] {
        const Peer::Result result = failure(state.range(0));
        return result.isFailure() && !result.causes.empty();
    });
}
BENCHMARK(buildFailure)->Arg(1)->Arg(2)->Arg(4)->Arg(8);

void formatFailure(benchmark::State& state) {
    const Peer::Result result = failure(state.range(0));
    const std::size_t length = result.format().size();
    measure(state, [&] { return result.format().size() == length; });
}
BENCHMARK(formatFailure)->Arg(1)->Arg(2)->Arg(4)->Arg(8);

// Passes a success through all layers, from the link up to the caller.
void passSuccess(benchmark::State& state) {
    measure(state, [] {
        const Link::Result link = Link::Result::success();
        const TextProtocol::Result protocol(link, TextProtocol::ResultCode::LinkError,
                                            TextProtocol::ResultCode::Success);
        const Peer::Result peer(protocol, Peer::ResultCode::ProtocolError,
                                Peer::ResultCode::Success);
        const Service::Result service(peer, Service::ResultCode::TransportError,
                                      Service::ResultCode::Success);
        return service.isSuccess();
    });
}
BENCHMARK(passSuccess);

} // namespace
