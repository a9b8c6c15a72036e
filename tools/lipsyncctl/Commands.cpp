#include "tools/lipsyncctl/Commands.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "lipsyncapi/Service.h"
#include "tools/lipsyncctl/Output.h"
#include "tools/lipsyncctl/Reading.h"
#include "tools/lipsyncctl/Time.h"
#include "tools/lipsyncctl/Watch.h"

namespace lipsyncctl {

using velta::zub::lipsyncapi::Service;

namespace {

int fail(const Service::Result& result, Output& output) {
    return output.fail({result.code, result.format()});
}

template <typename... Values>
std::string printed(const char* format, Values... values) {
    char text[256];
    std::snprintf(text, sizeof(text), format, values...);
    return text;
}

int printCapabilities(const Service& service, Output& output) {
    unsigned long granularityMs = 0;
    unsigned long maxMs = 0;
    const Service::Result result = service.getCapabilities(granularityMs, maxMs);
    if (result.isFailure()) {
        return fail(result, output);
    }
    output.print({{"granularity_ms", granularityMs}, {"max_margin_ms", maxMs}},
                 printed("margins of 0 to %lu ms in steps of %lu ms", maxMs, granularityMs));
    return EXIT_SUCCESS;
}

int printMargin(const Service& service, Output& output) {
    unsigned long marginMs = 0;
    const Service::Result result = service.getAudioDelayMargin(marginMs);
    if (result.isFailure()) {
        return fail(result, output);
    }
    output.print({{"margin_ms", marginMs}, {"source", "last confirmed on this connection"}},
                 printed("%lu ms, the last margin confirmed on this connection; the engine's "
                         "margin may differ, and the protocol has no way to ask for it",
                         marginMs));
    return EXIT_SUCCESS;
}

int setMargin(Service& service, const Options& options, Output& output) {
    const Service::Result result = service.setAudioDelayMargin(options.marginMs);
    if (result.isFailure()) {
        return fail(result, output);
    }
    output.print({{"margin_ms", options.marginMs}},
                 printed("the engine delays the audio by %lu ms", options.marginMs));
    return EXIT_SUCCESS;
}

int printTimestamps(const Service& service, Output& output) {
    Reading reading;
    const Service::Result result = service.getAudioTimestamps(reading.timestamps);
    if (result.isFailure()) {
        return fail(result, output);
    }
    reading.time = now();
    output.print(reading.record(), reading.text());
    return EXIT_SUCCESS;
}

// The smallest value such that at least this share of the values are not larger.
double percentile(const std::vector<double>& sorted, double share) {
    const auto rank =
        static_cast<std::size_t>(share * static_cast<double>(sorted.size()) + 0.999999);
    return sorted[std::clamp<std::size_t>(rank, 1, sorted.size()) - 1];
}

int ping(const Service& service, const Options& options, Output& output) {
    const unsigned long count = options.exchanges;
    std::vector<double> times;
    times.reserve(count);
    while (times.size() < count) {
        velta::zub::common::LipSyncNtpTimestamps timestamps;
        const auto start = std::chrono::steady_clock::now();
        const Service::Result result = service.getAudioTimestamps(timestamps);
        const std::chrono::duration<double, std::milli> time =
            std::chrono::steady_clock::now() - start;
        // An error from the engine is an answer too.
        if (result.code == Service::ResultCode::TransportError) {
            return fail(result, output);
        }
        times.push_back(time.count());
    }
    std::sort(times.begin(), times.end());
    const double median = percentile(times, 0.5);
    const double high = percentile(times, 0.99);
    output.print({{"exchanges", count},
                  {"min_ms", times.front()},
                  {"median_ms", median},
                  {"p99_ms", high},
                  {"max_ms", times.back()}},
                 printed("%lu exchanges: min %.3f ms, median %.3f ms, 99th percentile %.3f ms, max "
                         "%.3f ms",
                         count, times.front(), median, high, times.back()));
    return EXIT_SUCCESS;
}

int sendVideo(Service& service, const Options& options, Output& output) {
    velta::zub::common::LipSyncNtpTimestamps timestamps;
    timestamps.audioCaptureTimestamp = options.capture;
    timestamps.audioRenderingTimestamp = options.rendering;
    const Service::Result result = service.setVideoTimestamps(timestamps);
    if (result.isFailure()) {
        return fail(result, output);
    }
    output.print({{"accepted", true}},
                 "accepted; the library does not check, keep or send these timestamps");
    return EXIT_SUCCESS;
}

} // namespace

int runCommand(const Options& options) {
    if (options.watch) {
        watchTimestamps(options);
        return EXIT_SUCCESS;
    }
    Output output(options.format);
    Service service;
    const Service::Result connected = service.connect(options.socket);
    if (connected.isFailure()) {
        return fail(connected, output);
    }
    switch (*options.command) {
        case Command::Capabilities: return printCapabilities(service, output);
        case Command::MarginGet: return printMargin(service, output);
        case Command::MarginSet: return setMargin(service, options, output);
        case Command::Timestamps: return printTimestamps(service, output);
        case Command::Ping: return ping(service, options, output);
        case Command::SendVideo: return sendVideo(service, options, output);
    }
    return EXIT_FAILURE;
}

} // namespace lipsyncctl
