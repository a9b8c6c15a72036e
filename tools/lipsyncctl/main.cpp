#include <chrono>
#include <cstdlib>
#include <thread>

#include "tools/common/Text.h"
#include "tools/common/Tool.h"
#include "tools/lipsyncctl/Commands.h"
#include "tools/lipsyncctl/Interrupt.h"
#include "tools/lipsyncctl/Reading.h"

namespace lipsyncctl {

namespace {

void printCapabilities(Connection& connection, Output& output) {
    unsigned long granularityMs = 0;
    unsigned long maxMs = 0;
    connection.run([&](auto& service) { return service.getCapabilities(granularityMs, maxMs); });
    output.print({{"granularity_ms", granularityMs}, {"max_margin_ms", maxMs}},
                 tools::printed("margins of 0 to %lu ms in steps of %lu ms", maxMs, granularityMs));
}

void setMargin(Connection& connection, unsigned long marginMs, Output& output) {
    connection.run([=](auto& service) { return service.setAudioDelayMargin(marginMs); });
    output.print({{"margin_ms", marginMs}},
                 tools::printed("the engine delays the audio by %lu ms", marginMs));
}

void printTimestamps(Connection& connection, Output& output) {
    const Reading reading = read(connection);
    if (reading.failure) {
        throw Failure(*reading.failure);
    }
    output.print(reading.record(), reading.text());
}

// Until the engine listens, or the time to wait for it is over.
void connect(Connection& connection, std::chrono::seconds wait) {
    const auto end = std::chrono::steady_clock::now() + wait;
    for (;; std::this_thread::sleep_for(std::chrono::milliseconds(50))) {
        try {
            return connection.connect();
        } catch (const Failure& failure) {
            if (!failure.isConnecting() || std::chrono::steady_clock::now() >= end) {
                throw;
            }
        }
    }
}

void run(const Options& options, Output& output) {
    if (options.watch) {
        watchTimestamps(options, output);
        return;
    }
    Connection connection(options.socket, std::chrono::milliseconds(options.timeoutMs));
    connect(connection, std::chrono::seconds(options.waitSeconds));
    switch (options.command) {
        case Command::Capabilities: printCapabilities(connection, output); break;
        case Command::SetMargin: setMargin(connection, options.marginMs, output); break;
        case Command::Timestamps: printTimestamps(connection, output); break;
        case Command::Ping: ping(connection, options.exchanges, output); break;
    }
}

int runCommand(int argc, char** argv) {
    Options options;
    if (!readOptions(argc, argv, options)) {
        return EXIT_SUCCESS;
    }
    if (!options.showsLog) {
        dropLog();
    }
    Output output(options.format);
    try {
        run(options, output);
    } catch (const Failure& failure) {
        if (options.format == Format::Json) {
            output.print({{"error", failure.record()}}, "");
        }
        throw;
    }
    return interruptStatus();
}

} // namespace

} // namespace lipsyncctl

int main(int argc, char** argv) {
    lipsyncctl::takeInterrupts();
    const int status =
        tools::runTool("lipsyncctl", [=] { return lipsyncctl::runCommand(argc, argv); });
    lipsyncctl::leaveInterrupts();
    return status;
}
