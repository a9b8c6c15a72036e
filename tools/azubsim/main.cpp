#include <cstdlib>

#include "tools/azubsim/Options.h"
#include "tools/azubsim/Program.h"
#include "tools/azubsim/control/Tell.h"
#include "tools/azubsim/report/Show.h"
#include "tools/common/Tool.h"

namespace {

using azubsim::Options;

std::string joined(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line += (line.empty() ? "" : " ") + word;
    }
    return line;
}

void run(const Options& options) {
    switch (options.mode) {
        case Options::Mode::Engine:
        case Options::Mode::Tap:
        case Options::Mode::Replay: azubsim::Program(options).run(); break;
        case Options::Mode::Show: azubsim::showRecording(options.recording, options.follows); break;
        case Options::Mode::Trace: azubsim::traceRecording(options.recording); break;
        case Options::Mode::Tell: azubsim::tell(options.socket, joined(options.command)); break;
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
