#include <systemd/sd-bus.h>

#include <string>

#include "benchmarks/exchange/BusPeer.h"
#include "benchmarks/exchange/Contestants.h"
#include "benchmarks/exchange/Values.h"

namespace exchange {

namespace {

class Bus {
public:
    // Flushing waits until authentication is complete.
    explicit Bus(const std::string& path) {
        benchmarks::check(sd_bus_new(&_bus) >= 0 &&
                              sd_bus_set_address(_bus, ("unix:path=" + path).c_str()) >= 0 &&
                              sd_bus_start(_bus) >= 0 && sd_bus_flush(_bus) >= 0,
                          "sd-bus connects");
    }

    ~Bus() { sd_bus_close_unref(_bus); }

    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    [[gnu::noinline]] bool exchange(std::size_t number) {
        sd_bus_error error{};
        sd_bus_message* reply = nullptr;
        Values values{};
        const bool isSuccess =
            sd_bus_call_method(_bus, nullptr, "/engine", "velta.zub.Engine", "GetAudioTimestamps",
                               &error, &reply, nullptr) >= 0 &&
            sd_bus_message_read(reply, "tttt", &values[0], &values[1], &values[2], &values[3]) >= 0;
        sd_bus_message_unref(reply);
        sd_bus_error_free(&error);
        return isSuccess && values == valuesOf(number);
    }

private:
    sd_bus* _bus = nullptr;
};

} // namespace

void bus(benchmark::State& state) {
    const BusPeer peer;
    Bus client(peer.path());
    run(state, client);
}

} // namespace exchange
