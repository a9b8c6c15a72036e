#pragma once

#include <systemd/sd-bus.h>

#include <cstddef>

#include "benchmarks/exchange/Contestant.h"
#include "benchmarks/exchange/ServerProcess.h"

namespace exchange {

/// What one would take instead of a protocol of one's own: sd-bus, from peer to peer without a bus
/// daemon, a method without arguments that returns the four values.
class BusContestant : public Contestant {
public:
    BusContestant();
    ~BusContestant() override;

    void exchange() override;

private:
    ServerProcess _server;
    sd_bus* _bus = nullptr;
    std::size_t _next = 0;
};

} // namespace exchange
