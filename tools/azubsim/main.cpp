#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <thread>

#include "tools/azubsim/Options.h"
#include "tools/azubsim/Program.h"
#include "tools/azubsim/control/Tell.h"
#include "tools/azubsim/report/Recording.h"
#include "tools/azubsim/report/Reports.h"
#include "tools/azubsim/report/Trace.h"
#include "tools/common/Text.h"
#include "tools/common/Tool.h"

namespace {

using namespace azubsim;

void forEachExchange(const std::string& path, bool follows,
                     const std::function<void(const Exchange&)>& handle) {
    Recording recording(path);
    for (;;) {
        while (const auto exchange = recording.next()) {
            handle(*exchange);
            tools::checkOutput();
        }
        if (!follows) {
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    if (recording.isCut()) {
        tools::complain("the last line of the recording is unfinished and is left out");
    }
}

void show(const std::string& path, bool follows) {
    forEachExchange(path, follows, [](const Exchange& exchange) {
        std::cout << tools::broken(exchangeLine(exchange), tools::terminalColumns(STDOUT_FILENO))
                  << '\n';
    });
}

void trace(const std::string& path) {
    Trace trace(std::cout);
    forEachExchange(path, false, [&](const Exchange& exchange) { trace.add(exchange); });
    trace.end();
}

void run(const Options& options) {
    switch (options.mode) {
        case Options::Mode::Engine:
        case Options::Mode::Tap:
        case Options::Mode::Replay: Program(options).run(); break;
        case Options::Mode::Show: show(options.recording, options.follows); break;
        case Options::Mode::Trace: trace(options.recording); break;
        case Options::Mode::Tell: tell(options.socket, options.command); break;
    }
}

} // namespace

int main(int argc, char** argv) {
    return tools::runTool("azubsim", [=] {
        if (const auto options = azubsim::readOptions(argc, argv)) {
            run(*options);
        }
        return EXIT_SUCCESS;
    });
}
