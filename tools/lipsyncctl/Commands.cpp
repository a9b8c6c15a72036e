#include "tools/lipsyncctl/Commands.h"

#include <chrono>
#include <cstdlib>

#include "lipsyncapi/Service.h"
#include "tools/lipsyncctl/Connection.h"
#include "tools/lipsyncctl/Output.h"
#include "tools/lipsyncctl/Ping.h"
#include "tools/lipsyncctl/Reading.h"
#include "tools/lipsyncctl/Text.h"
#include "tools/lipsyncctl/Time.h"
#include "tools/lipsyncctl/Watch.h"

namespace lipsyncctl {

namespace {

int printCapabilities(Connection& connection, Output& output) {
    unsigned long granularityMs = 0;
    unsigned long maxMs = 0;
    connection.service().getCapabilities(granularityMs, maxMs);
    output.print({{"granularity_ms", granularityMs}, {"max_margin_ms", maxMs}},
                 printed("margins of 0 to %lu ms in steps of %lu ms", maxMs, granularityMs));
    return EXIT_SUCCESS;
}

int printMargin(Connection& connection, Output& output) {
    unsigned long marginMs = 0;
    connection.service().getAudioDelayMargin(marginMs);
    output.print({{"margin_ms", marginMs}, {"source", "last confirmed on this connection"}},
                 printed("%lu ms, the last margin confirmed on this connection; the engine's "
                         "margin may differ, and the protocol has no way to ask for it",
                         marginMs));
    return EXIT_SUCCESS;
}

int setMargin(Connection& connection, const Options& options, Output& output) {
    if (const auto failure = connection.setMargin(options.marginMs)) {
        return output.fail(*failure);
    }
    output.print({{"margin_ms", options.marginMs}},
                 printed("the engine delays the audio by %lu ms", options.marginMs));
    return EXIT_SUCCESS;
}

int printTimestamps(Connection& connection, Output& output) {
    Reading reading;
    if (const auto failure = connection.getTimestamps(reading.timestamps)) {
        return output.fail(*failure);
    }
    reading.time = now();
    output.print(reading.record(), reading.text());
    return EXIT_SUCCESS;
}

int sendVideo(Connection& connection, const Options& options, Output& output) {
    velta::zub::common::LipSyncNtpTimestamps timestamps;
    timestamps.audioCaptureTimestamp = options.capture;
    timestamps.audioRenderingTimestamp = options.rendering;
    connection.service().setVideoTimestamps(timestamps);
    output.print({{"accepted", true}},
                 "accepted; the library does not check, keep or send these timestamps");
    return EXIT_SUCCESS;
}

} // namespace

int runCommand(const Options& options) {
    if (options.watch) {
        return watchTimestamps(options);
    }
    Output output(options.format);
    Connection connection(options.socket, std::chrono::milliseconds(options.timeoutMs));
    if (const auto failure = connection.connect()) {
        return output.fail(*failure);
    }
    switch (*options.command) {
        case Command::Capabilities: return printCapabilities(connection, output);
        case Command::MarginGet: return printMargin(connection, output);
        case Command::MarginSet: return setMargin(connection, options, output);
        case Command::Timestamps: return printTimestamps(connection, output);
        case Command::Ping: return ping(connection, options.exchanges, output);
        case Command::SendVideo: return sendVideo(connection, options, output);
    }
    return EXIT_FAILURE;
}

} // namespace lipsyncctl
