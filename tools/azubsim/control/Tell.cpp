#include "tools/azubsim/control/Tell.h"

#include <chrono>
#include <iostream>
#include <thread>

#include "tools/azubsim/net/Connection.h"
#include "tools/azubsim/protocol/Exchange.h"
#include "tools/common/Error.h"
#include "tools/common/Text.h"

namespace azubsim {

namespace {

using Stream = asio::local::stream_protocol::iostream;
using std::chrono::steady_clock;
using tools::Error;

constexpr std::chrono::seconds timeToStart{2};
constexpr std::chrono::seconds timeToAnswer{10};

void connect(Stream& stream, const std::string& path) {
    const Address address = toAddress(path);
    const auto deadline = steady_clock::now() + timeToStart;
    for (stream.connect(address); !stream; stream.connect(address)) {
        const asio::error_code error = stream.error();
        const bool mayStart = error == asio::error::connection_refused || error.value() == ENOENT;
        if (!mayStart || steady_clock::now() >= deadline) {
            throw Error("cannot connect to " + path + ": " + error.message());
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        stream.clear();
    }
}

} // namespace

void tell(const std::string& socket, const std::string& command) {
    Stream stream;
    connect(stream, controlPath(socket));
    stream.expires_after(timeToAnswer);
    stream << command << endMarker << std::flush;
    std::string verdict;
    std::string line;
    std::getline(stream, verdict);
    if (verdict + '\n' != accepted) {
        std::getline(stream, line);
        throw Error(verdict + '\n' == refused ? line : "no answer");
    }
    while (std::getline(stream, line)) {
        std::cout << tools::printable(line) << '\n';
    }
}

} // namespace azubsim
