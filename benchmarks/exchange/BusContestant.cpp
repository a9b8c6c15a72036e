#include "benchmarks/exchange/BusContestant.h"

#include <stdexcept>
#include <string>
#include <system_error>

#include "benchmarks/exchange/Answers.h"

namespace exchange {

namespace {

void check(int result, const char* what) {
    if (result < 0) {
        throw std::system_error(-result, std::generic_category(), what);
    }
}

} // namespace

BusContestant::BusContestant() : _server("bus") {
    check(sd_bus_new(&_bus), "sd_bus_new");
    const std::string address = "unix:path=" + _server.path();
    check(sd_bus_set_address(_bus, address.c_str()), "sd_bus_set_address");
    check(sd_bus_start(_bus), "sd_bus_start");
}

BusContestant::~BusContestant() {
    sd_bus_unref(_bus);
}

void BusContestant::exchange() {
    sd_bus_error error{};
    sd_bus_message* reply = nullptr;
    check(sd_bus_call_method(_bus, nullptr, "/engine", "velta.zub.Engine", "GetAudioTimestamps",
                             &error, &reply, nullptr),
          "sd_bus_call_method");
    Values values{};
    check(sd_bus_message_read(reply, "tttt", &values[0], &values[1], &values[2], &values[3]),
          "sd_bus_message_read");
    sd_bus_message_unref(reply);
    sd_bus_error_free(&error);
    if (values != valuesOf(_next++)) {
        throw std::runtime_error("sd-bus: wrong values");
    }
}

} // namespace exchange
