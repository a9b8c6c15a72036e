#include <chrono>
#include <cstdlib>
#include <thread>

#include "tools/common/Text.h"
#include "tools/common/Tool.h"
#include "tools/lipsyncctl/Connection.h"
#include "tools/lipsyncctl/Interrupt.h"
#include "tools/lipsyncctl/Log.h"
#include "tools/lipsyncctl/Options.h"
#include "tools/lipsyncctl/Output.h"
#include "tools/lipsyncctl/Ping.h"
#include "tools/lipsyncctl/Reading.h"
#include "tools/lipsyncctl/watch/Watch.h"

namespace lipsyncctl {

namespace {

void printCapabilities(Connection& connection, Output& output) {
    unsigned long granularityMs = 0;
    unsigned long maxMs = 0;
    connection.service().getCapabilities(granularityMs, maxMs);
    output.print({{"granularity_ms", granularityMs}, {"max_margin_ms", maxMs}},
                 tools::printed("margins of 0 to %lu ms in steps of %lu ms", maxMs, granularityMs));
}

void setMargin(Connection& connection, unsigned long marginMs, Output& output) {
    connection.setMargin(marginMs);
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
    using std::chrono::steady_clock;
    constexpr std::chrono::milliseconds pause{50};
    const auto end = steady_clock::now() + wait;
    for (;;) {
        try {
            connection.connect();
            return;
        } catch (const Failure& failure) {
            if (!failure.isConnecting() || steady_clock::now() + pause > end) {
                throw;
            }
        }
        std::this_thread::sleep_for(pause);
    }
}

void run(const Options& options, Output& output, Interrupt& interrupt) {
    if (options.watch) {
        watchTimestamps(options, output, interrupt);
        return;
    }
    Connection connection(options.socket, std::chrono::milliseconds(options.timeoutMs));
    connect(connection, std::chrono::seconds(options.waitSeconds));
    switch (options.command) {
        case Command::Capabilities: printCapabilities(connection, output); break;
        case Command::SetMargin: setMargin(connection, options.marginMs, output); break;
        case Command::Timestamps: printTimestamps(connection, output); break;
        case Command::Ping: ping(connection, options.exchanges, output, interrupt); break;
    }
}

int runTool(int argc, char** argv, Interrupt& interrupt) {
    Options options;
    if (!readOptions(argc, argv, options)) {
        return EXIT_SUCCESS;
    }
    if (!options.showsLog) {
        dropLog();
    }
    Output output(options.format);
    try {
        run(options, output, interrupt);
    } catch (const Failure& failure) {
        if (options.format == Format::Json) {
            output.print({{"error", failure.record()}}, "");
        }
        throw;
    }
    return interrupt.exitStatus();
}

} // namespace

} // namespace lipsyncctl

int main(int argc, char** argv) {
    lipsyncctl::Interrupt interrupt;
    return tools::runTool("lipsyncctl", [&] { return lipsyncctl::runTool(argc, argv, interrupt); });
}
