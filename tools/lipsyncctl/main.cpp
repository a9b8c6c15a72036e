#include <cstdlib>

#include "tools/common/Tool.h"
#include "tools/lipsyncctl/Commands.h"
#include "tools/lipsyncctl/Log.h"
#include "tools/lipsyncctl/Options.h"

int main(int argc, char** argv) {
    return tools::runTool("lipsyncctl", [=] {
        lipsyncctl::Options options;
        if (!lipsyncctl::readOptions(argc, argv, options)) {
            return EXIT_SUCCESS;
        }
        if (!options.showsLog) {
            lipsyncctl::dropLog();
        }
        return lipsyncctl::runCommand(options);
    });
}
