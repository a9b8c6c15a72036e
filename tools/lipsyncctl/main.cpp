#include <clocale>
#include <csignal>

#include "tools/common/StandardDescriptors.h"
#include "tools/lipsyncctl/Commands.h"
#include "tools/lipsyncctl/Messages.h"
#include "tools/lipsyncctl/Options.h"
#include "tools/lipsyncctl/Output.h"

int main(int argc, char** argv) {
    tools::openStandardDescriptors();
    std::setlocale(LC_CTYPE, "");
    // Writing to an engine that has gone must not kill this process.
    std::signal(SIGPIPE, SIG_IGN);
    lipsyncctl::Options options;
    if (const auto status = lipsyncctl::readOptions(argc, argv, options)) {
        return lipsyncctl::finishOutput(*status);
    }
    if (!options.showsLog) {
        lipsyncctl::dropLog();
    }
    return lipsyncctl::finishOutput(lipsyncctl::runCommand(options));
}
