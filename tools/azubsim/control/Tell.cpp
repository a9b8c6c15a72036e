#include "tools/azubsim/control/Tell.h"

#include <sys/socket.h>

#include <asio/io_context.hpp>
#include <cerrno>
#include <chrono>
#include <iostream>
#include <sstream>
#include <thread>

#include "tools/azubsim/control/ControlSession.h"
#include "tools/azubsim/net/SocketFile.h"
#include "tools/common/Error.h"
#include "tools/common/Printable.h"

namespace azubsim {

namespace {

using std::chrono::steady_clock;
using tools::Error;
using Socket = asio::local::stream_protocol::socket;

constexpr std::chrono::seconds timeToStart{2};
constexpr timeval timeToAnswer{10, 0};

Socket connect(asio::io_context& io, const std::string& path) {
    const Address address = toAddress(path);
    const auto deadline = steady_clock::now() + timeToStart;
    for (;;) {
        Socket socket(io);
        const asio::error_code error = connectAtOnce(socket, address);
        if (!error) {
            return socket;
        }
        const bool mayStart = error == asio::error::connection_refused ||
                              error == asio::error::try_again || error.value() == ENOENT;
        if (!mayStart || steady_clock::now() >= deadline) {
            throw Error("cannot connect to " + path + ": " + error.message());
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

std::string ask(Socket& socket, const std::string& command) {
    socket.non_blocking(false);
    socket.native_non_blocking(false);
    const int descriptor = socket.native_handle();
    setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &timeToAnswer, sizeof(timeToAnswer));
    const std::string line = command + '\n';
    std::string answer(65536, '\0');
    static_cast<void>(::send(descriptor, line.data(), line.size(), 0));
    const ssize_t size = ::recv(descriptor, answer.data(), answer.size(), MSG_WAITALL);
    if (size <= 0) {
        throw Error("no answer");
    }
    return answer.substr(0, static_cast<std::size_t>(size));
}

} // namespace

void tell(const std::string& socket, const std::string& command) {
    if (command.find('\n') != std::string::npos) {
        throw Error("a command is one line");
    }
    asio::io_context io;
    Socket connection = connect(io, controlPath(socket));
    std::istringstream answer(ask(connection, command));
    std::string first;
    std::getline(answer, first);
    std::string text;
    for (std::string line; std::getline(answer, line);) {
        text += (text.empty() ? "" : "\n") + tools::printable(line);
    }
    if (first + '\n' != accepted) {
        throw Error(text);
    }
    std::cout << text << '\n';
}

} // namespace azubsim
