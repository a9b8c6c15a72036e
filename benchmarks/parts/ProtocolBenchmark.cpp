// Sends and receives messages over a pair of sockets. The peer reads or writes in the same thread,
// so the time includes its system calls. `bareSockets` shows the cost of the system calls alone.

#include <cstring>
#include <memory>

#include "benchmarks/parts/Measure.h"
#include "comms/TextProtocol.h"
#include "tests/support/SocketPair.h"

namespace {

using benchmarks::measure;
using tests::SocketPair;
using velta::zub::comms::Link;
using velta::zub::comms::TextProtocol;

// Typical sizes of a request and an answer, and a size that takes several reads.
constexpr int requestSize = 80;
constexpr int answerSize = 400;
constexpr int longSize = 4000;

std::size_t size(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

bool readAll(int socket, std::size_t count) {
    char bytes[longSize + 2];
    return recv(socket, bytes, count, MSG_WAITALL) == static_cast<ssize_t>(count);
}

bool writeAll(int socket, const std::string& bytes) {
    return write(socket, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
}

void sendMessage(benchmark::State& state) {
    const SocketPair pair;
    TextProtocol protocol(new Link(pair.takeNear()));
    const std::string message(size(state), 'x');
    measure(state, [&] {
        return protocol.send(message).isSuccess() && readAll(pair.far(), message.size() + 2);
    });
}
BENCHMARK(sendMessage)->Arg(requestSize)->Arg(longSize);

void receiveMessage(benchmark::State& state) {
    const SocketPair pair;
    TextProtocol protocol(new Link(pair.takeNear()));
    const std::string frame = std::string(size(state), 'x') + TextProtocol::endMessageMarker;
    measure(state, [&] {
        std::string* message = nullptr;
        const bool isReceived =
            writeAll(pair.far(), frame) && protocol.receive(message).isSuccess();
        const std::unique_ptr<std::string> owner(message);
        return isReceived && message->size() == size(state);
    });
}
BENCHMARK(receiveMessage)->Arg(answerSize)->Arg(longSize);

// One write and one read of the same bytes, and nothing else.
void bareSockets(benchmark::State& state) {
    SocketPair pair;
    const std::string frame(size(state) + 2, 'x');
    measure(state,
            [&] { return writeAll(pair.far(), frame) && readAll(pair.takeNear(), frame.size()); });
    close(pair.takeNear());
}
BENCHMARK(bareSockets)->Arg(requestSize)->Arg(answerSize)->Arg(longSize);

} // namespace
