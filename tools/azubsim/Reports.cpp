#include "tools/azubsim/Reports.h"

#include <algorithm>

#include "tools/azubsim/ExchangeLine.h"

namespace azubsim {

namespace {

// A longer message is truncated: a flood must not fill the terminal.
constexpr std::size_t shownBytes = 2000;

} // namespace

void Reports::add(const Exchange& exchange) {
    if (printsLines) {
        _screen.sayIfRead(exchangeLine(exchange));
    }
    if (isVerbose) {
        show(exchange.client, '<', exchange.request);
        show(exchange.client, '>', exchange.reply.bytes());
    }
    if (recorder && !recorder->add(exchange)) {
        _screen.warn("cannot write the recording; it ends here");
    }
    if (trace && !trace->add(exchange)) {
        _screen.warn("cannot write the trace; it ends here");
    }
}

void Reports::show(int client, char direction, const std::string& message) {
    std::string line =
        "client " + std::to_string(client) + ' ' + direction + ' ' + message.substr(0, shownBytes);
    if (message.size() > shownBytes) {
        line += "... (" + std::to_string(message.size()) + " bytes)";
    }
    _screen.warn(line);
}

} // namespace azubsim
