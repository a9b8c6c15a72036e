#include "tools/azubsim/report/Show.h"

#include <unistd.h>

#include <chrono>
#include <iostream>
#include <thread>

#include "tools/azubsim/report/Line.h"
#include "tools/azubsim/report/Recording.h"
#include "tools/azubsim/report/Trace.h"
#include "tools/common/Text.h"
#include "tools/common/Tool.h"

namespace azubsim {

namespace {

void complainIfCut(const Recording& recording) {
    if (recording.isCut()) {
        tools::complain("the last line of the recording is unfinished and is left out");
    }
}

} // namespace

void showRecording(const std::string& path, bool follows) {
    Recording recording(path);
    for (;;) {
        while (const auto exchange = recording.next()) {
            std::cout << tools::broken(exchangeLine(*exchange),
                                       tools::terminalColumns(STDOUT_FILENO))
                      << '\n';
            tools::checkOutput();
        }
        if (!follows) {
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    complainIfCut(recording);
}

void traceRecording(const std::string& path) {
    Recording recording(path);
    Trace trace(std::cout);
    while (const auto exchange = recording.next()) {
        trace.add(*exchange);
        tools::checkOutput();
    }
    trace.end();
    complainIfCut(recording);
}

} // namespace azubsim
