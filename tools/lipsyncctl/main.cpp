#include <fcntl.h>

#include <clocale>
#include <csignal>

#include "tools/lipsyncctl/Commands.h"
#include "tools/lipsyncctl/Messages.h"
#include "tools/lipsyncctl/Options.h"
#include "tools/lipsyncctl/Output.h"

namespace {

// A socket must not get the number of a closed standard descriptor.
void openStandardDescriptors() {
    for (int fd = 0; fd <= 2; ++fd) {
        if (fcntl(fd, F_GETFD) < 0) {
            static_cast<void>(open("/dev/null", O_RDWR));
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    openStandardDescriptors();
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
