// How the cost of one answer grows with its size. What is timed is the processor's time for this
// thread: neither the other processes of a busy machine nor the sender's work are costs of the
// receiver.

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

// Sends what is left of these bytes, in pieces, up to the end or to where sending would block.
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

// The entity keeps an answer from being read without a tree, which costs less.
std::string answerWith(const std::string& message) {
    return tests::timestampsFrame("917", "958", "934", "60", "1000", "&amp;" + message);
}

// What of a document of `size` bytes is its message's, behind the entity.
std::size_t messageSize(std::size_t size) {
    return size - (answerWith("").size() - TextProtocol::endMessageMarker.size());
}

std::string answerOf(std::size_t size) {
    return answerWith(std::string(messageSize(size), 'x'));
}

// The socket is filled before the time starts, so that reading waits for nothing; the rest comes
// from a thread.
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
        check(isReceived && message->size() == size, "the answer is received as a whole");
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

// On a stream, each read brings as much as it asks for.
void growthReceive(benchmark::State& state) {
    receive(state, SOCK_STREAM, SIZE_MAX);
}
BENCHMARK(growthReceive)->Apply([](auto* benchmark) { sizesUpTo(benchmark, 16 * megabyte); });

// A socket of packets keeps single bytes apart, whichever of writer and reader is faster. Every
// byte costs a search of the whole buffer: 1 MB takes ten seconds, and twice as much four times as
// long.
void growthReceiveBytes(benchmark::State& state) {
    receive(state, SOCK_SEQPACKET, 1);
}
BENCHMARK(growthReceiveBytes)->Apply([](auto* benchmark) { sizesUpTo(benchmark, megabyte); });

} // namespace
