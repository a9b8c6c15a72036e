#pragma once

#include <chrono>
#include <string>
#include <utility>

#include "tests/support/Frames.h"
#include "tools/azubsim/protocol/Exchange.h"

namespace tests {

inline const std::string getAudioTs = frame("<GetAudioTs_Request />");
inline const std::string setMargin = frame("<SetAudioDelay_Request>40</SetAudioDelay_Request>");

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
    exchange.time = std::chrono::microseconds(1700000000123000 + time);
    exchange.request = request;
    exchange.reply = std::move(reply);
    exchange.fault = fault;
    exchange.engineTook = std::chrono::microseconds(113);
    return exchange;
}

inline azubsim::Reply whole(const std::string& document) {
    return {{{std::chrono::microseconds(113), document}}, false};
}

} // namespace tests
