#pragma once

#include <string>

#include "lipsyncapi/Service.h"

namespace video {

struct Options {
    std::string socket = velta::zub::lipsyncapi::Service::defaultLipsyncSocketName;
    std::string network; ///< A file; empty for none.
    std::string csv;     ///< A file; empty for none.
    long seconds = 10;
    long deadlineMs = 500;
    long latenessMs = 195;
};

/// Sets `options` from the command line, or prints help or an error and ends the program.
Options parseOptions(int argc, char** argv);

} // namespace video
