// How the cost of one answer grows with its size. Measures the processor time of this thread, which
// includes neither other processes nor the sender's work.

#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <memory>
#include <thread>

#include "benchmarks/Check.h"
#include "comms/TextProtocol.h"
#include "lipsync/SerializationTraits.h"
#include "tests/support/Frames.h"
#include "tests/support/SocketPair.h"

namespace {

using benchmarks::check;
using velta::zub::comms::Link;
using velta::zub::comms::TextProtocol;
using velta::zub::lipsync::GetAudioTs;
using velta::zub::lipsync::Serializer;

double now() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

constexpr long megabyte = 1L << 20;

void sizesUpTo(benchmark::internal::Benchmark* benchmark, long largest) {
    benchmark->UseManualTime()->Arg(400);
    for (long size = 1024; size <= largest; size *= 2) {
        benchmark->Arg(size);
    }
}

// Sends the remaining bytes in pieces, until all are sent or sending fails or would block.
struct Sender {
    void send(int flags) {
        while (sent < bytes.size()) {
            const std::size_t piece = std::min(pieceSize, bytes.size() - sent);
            const ssize_t n = ::send(socket, bytes.data() + sent, piece, flags | MSG_NOSIGNAL);
            if (n < 0) {
                return;
            }
            sent += static_cast<std::size_t>(n);
        }
    }

    int socket;
    const std::string& bytes;
    std::size_t pieceSize;
    std::size_t sent = 0;
};

// The entity makes sure that the answer is read from a tree, which costs more.
std::string answerWith(const std::string& message) {
    return tests::timestampsFrame("917", "958", "934", "60", "1000", "&amp;" + message);
}

// The length of the message after the entity, in a document of `size` bytes.
std::size_t messageSize(std::size_t size) {
    return size - (answerWith("").size() - TextProtocol::endMessageMarker.size());
}

std::string answerOf(std::size_t size) {
    return answerWith(std::string(messageSize(size), 'x'));
}

// Fills the socket before timing starts, so that reading need not wait. A thread sends the rest.
void receive(benchmark::State& state, int socketType, std::size_t pieceSize) {
    const auto size = static_cast<std::size_t>(state.range(0));
    const std::string frame = answerOf(size);
    for (auto _ : state) {
        const tests::SocketPair pair(socketType);
        TextProtocol protocol(new Link(pair.takeNear()));
        Sender sender{pair.far(), frame, pieceSize};
        sender.send(MSG_DONTWAIT);
        std::thread rest;
        if (sender.sent < frame.size()) {
            rest = std::thread([&] { sender.send(0); });
        }
        std::string* message = nullptr;
        const double start = now();
        const bool isReceived = protocol.receive(message).isSuccess();
        state.SetIterationTime(now() - start);
        if (rest.joinable()) {
            rest.join();
        }
        const std::unique_ptr<std::string> owner(message);
        check(isReceived && message->size() == size, "the whole answer is received");
    }
}

void growthDeserialize(benchmark::State& state) {
    std::string text = answerOf(static_cast<std::size_t>(state.range(0)));
    text.resize(text.size() - TextProtocol::endMessageMarker.size());
    for (auto _ : state) {
        GetAudioTs::Answer answer;
        const double start = now();
        const bool isRead = Serializer().deserialize(text, answer).isSuccess();
        state.SetIterationTime(now() - start);
        check(isRead && answer.timestamps.jbmCurrentDepth == 60 &&
                  answer.result.message.size() == 1 + messageSize(text.size()),
              "the answer is read");
    }
}
BENCHMARK(growthDeserialize)->Apply([](auto* benchmark) { sizesUpTo(benchmark, 16 * megabyte); });

// On a stream, each read returns as much as it asks for.
void growthReceive(benchmark::State& state) {
    receive(state, SOCK_STREAM, SIZE_MAX);
}
BENCHMARK(growthReceive)->Apply([](auto* benchmark) { sizesUpTo(benchmark, 16 * megabyte); });

// On a packet socket each byte needs its own read, however fast the sender is. Each byte costs a
// search of the whole buffer: 1 MB takes seconds, and twice the size takes four times as long.
void growthReceiveBytes(benchmark::State& state) {
    receive(state, SOCK_SEQPACKET, 1);
}
BENCHMARK(growthReceiveBytes)->Apply([](auto* benchmark) { sizesUpTo(benchmark, megabyte); });

} // namespace
