// Prints as CSV what receiving and reading one answer costs, by its size and by how it arrives.

#include <time.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>

#include "benchmarks/Check.h"
#include "benchmarks/growth/Feed.h"
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

// How an answer arrives. On a stream, each read brings as much as it asks for. A socket of packets
// keeps single bytes apart, whoever of writer and reader is faster.
struct Arrival {
    const char* name;
    int socketType;
    std::size_t pieceSize;
    std::size_t largest;
};

struct Options {
    std::size_t largest = std::size_t{16} << 20;
    // Every byte costs a system call on either side and a search of the whole buffer: 1 MB takes
    // ten seconds or more, and twice as much up to four times as long.
    std::size_t largestByByte = std::size_t{1} << 20;
};

struct Cost {
    double receive = std::numeric_limits<double>::max();
    double deserialize = std::numeric_limits<double>::max();
};

// The least of several runs is the one whose caches the rest of the machine has disturbed least.
constexpr double leastSeconds = 0.3;
constexpr int mostRuns = 500;

// The processor's time for this thread: neither the other processes of a busy machine nor the
// sender's work are costs of the receiver.
double now() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// The entity in it keeps an answer from being read without a tree, which costs less.
const std::string entity = "&amp;";

std::string answerWith(const std::string& message) {
    return tests::timestampsFrame("917", "958", "934", "60", "1000", entity + message);
}

// What of a document of `size` bytes is its message's, behind the entity.
std::size_t messageSize(std::size_t size) {
    return size - (answerWith("").size() - TextProtocol::endMessageMarker.size());
}

std::unique_ptr<std::string> receive(const std::string& frame, const Arrival& arrival,
                                     double& seconds) {
    const tests::SocketPair pair(arrival.socketType);
    TextProtocol protocol(new Link(pair.takeNear()));
    const benchmarks::Feed feed(pair.far(), frame, arrival.pieceSize);
    std::string* message = nullptr;
    const double start = now();
    const bool isReceived = protocol.receive(message).isSuccess();
    seconds = std::min(seconds, now() - start);
    check(isReceived, "the answer is received");
    return std::unique_ptr<std::string>(message);
}

void deserialize(const std::string& text, double& seconds) {
    GetAudioTs::Answer answer;
    const double start = now();
    const bool isRead = Serializer().deserialize(text, answer).isSuccess();
    seconds = std::min(seconds, now() - start);
    check(isRead && answer.timestamps.jbmCurrentDepth == 60 &&
              answer.result.message.size() == 1 + messageSize(text.size()),
          "the answer is read");
}

Cost measure(std::size_t size, const Arrival& arrival) {
    const std::string frame = answerWith(std::string(messageSize(size), 'x'));
    const double start = now();
    Cost cost;
    for (int run = 0; run < mostRuns && (run == 0 || now() - start < leastSeconds); ++run) {
        const auto text = receive(frame, arrival, cost.receive);
        check(text->size() == size, "the answer is received as a whole");
        deserialize(*text, cost.deserialize);
    }
    return cost;
}

void measureAll(const Arrival& arrival) {
    std::size_t size = 400;
    while (size <= arrival.largest) {
        const Cost cost = measure(size, arrival);
        std::printf("%zu,%s,%.9f,%.9f\n", size, arrival.name, cost.receive, cost.deserialize);
        std::fflush(stdout);
        size = size == 400 ? 1024 : 2 * size;
    }
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Prints as CSV what one answer costs, by its size and by how it arrives.");
    app.add_option("--largest", options.largest, "Bytes of the largest answer that arrives whole")
        ->capture_default_str();
    app.add_option("--largest-by-byte", options.largestByByte,
                   "Bytes of the largest answer that arrives byte by byte")
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    std::puts("size_bytes,arrival,receive_s,deserialize_s");
    measureAll({"whole", SOCK_STREAM, options.largest + 2, options.largest});
    measureAll({"bytes", SOCK_SEQPACKET, 1, options.largestByByte});
    return EXIT_SUCCESS;
}
