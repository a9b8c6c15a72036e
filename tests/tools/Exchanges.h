#pragma once

#include <chrono>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>

#include "tools/azubsim/Exchange.h"

namespace tests {

inline std::string allBytes() {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    return all;
}

/// An exchange at a number of microseconds after a fixed time.
inline azubsim::Exchange exchange(int client, long long time, const std::string& request,
                                  azubsim::Reply reply, const std::string& fault = "") {
    azubsim::Exchange exchange;
    exchange.client = client;
    exchange.time = std::chrono::system_clock::time_point(std::chrono::seconds(1700000000) +
                                                          std::chrono::milliseconds(123) +
                                                          std::chrono::microseconds(time));
    exchange.request = request;
    exchange.reply = std::move(reply);
    exchange.fault = fault;
    exchange.engineTook = std::chrono::microseconds(113);
    return exchange;
}

inline azubsim::Reply whole(const std::string& document) {
    return {{{std::chrono::microseconds(113), document + azubsim::endMarker}},
            azubsim::Reply::End::Open};
}

inline std::string contents(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace tests
