#include <cstdarg>
#include <cstdint>

#include "benchmarks/parts/Measure.h"
#include "lipsyncapi/ApiLog.h"
#include "lipsyncapi/Logger.h"
#include "lipsyncapi/Service.h"
#include "log/LogWriter.h"
#include "log/ThroughputLimit.h"
#include "tests/support/Silence.h"

namespace {

using benchmarks::measure;
using velta::utilities::GenericLog;
using velta::utilities::TypeList;
using velta::utilities::details::Level;
using velta::zub::lipsyncapi::Service;
using velta::zub::log::ApiLog;
using velta::zub::log::throughput_limit;

unsigned long platformRecords = 0;
unsigned long droppedRecords = 0;

// Discards the finished line.
struct Nowhere {
    template <Level::Enum level>
    [[gnu::format(printf, 2, 0)]] static void valog(const char*, const char*, va_list) {
        ++droppedRecords;
    }
};

struct DroppingLogger {
    using Log = GenericLog<TypeList<Nowhere>>;
    static constexpr const char* tag = velta::zub::lipsyncapi::Logger::tag;
};

// Logs the line of getAudioTimestamps.
template <typename Logger>
void writeLine() {
    ApiLog<Logger>()
        .addOutput("audioCaptureTimestamp", 16963814587331346432UL)
        .addOutput("audioRenderingTimestamp", 16963814588104458240UL)
        .addOutput("audioReceivingTimestamp", 16963814587674943488UL)
        .addOutput("jbmCurrentDepth", 60UL)
        .setResult(Service::Result::success())
        .event("Client is requesting the NTP timestamp");
}

void makeLogLine(benchmark::State& state) {
    measure(state, [] {
        const unsigned long before = droppedRecords;
        writeLine<DroppingLogger>();
        return droppedRecords == before + 1;
    });
}
BENCHMARK(makeLogLine);

// Uses the library's own outputs. The platform's writer is replaced below.
void makeAndWriteLogLine(benchmark::State& state) {
    const tests::Silence silence;
    measure(state, [] {
        const unsigned long before = platformRecords;
        writeLine<velta::zub::lipsyncapi::Logger>();
        return platformRecords == before + 1;
    });
}
BENCHMARK(makeAndWriteLogLine);

[[gnu::format(printf, 1, 2)]] void writeRecord(const char* format, ...) {
    va_list args;
    va_start(args, format);
    velta::zub::log::writeRecord(ANDROID_LOG_INFO, "tag", format, args);
    va_end(args);
}

// Passes a record to the platform's writer, with the throughput limit off or on. The limit is so
// high that no record waits.
void passThroughputLimit(benchmark::State& state) {
    if (state.range(0) != 0) {
        throughput_limit = {0, UINT32_MAX, 1000};
    }
    measure(state, [] {
        const unsigned long before = platformRecords;
        writeRecord("text");
        return platformRecords == before + 1;
    });
    benchmarks::check((throughput_limit.counter != 0) == throughput_limit.isOn(),
                      "records are counted only if there is a limit");
    throughput_limit = {0, 0, 0};
}
BENCHMARK(passThroughputLimit)->ArgName("on")->Arg(0)->Arg(1);

} // namespace

// Replaces the platform's log writer.
extern "C" int __android_log_vprint(int, const char*, const char*, va_list) {
    ++platformRecords;
    return 1;
}
