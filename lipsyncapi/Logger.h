#pragma once

#include "utilities/log/GenericLog.h"

namespace velta::zub::lipsyncapi {

/// What the log lines of API calls are written with.
struct Logger {
    using Log = utilities::StandardLog;
    static constexpr const char* tag = "AZUBLIPSYNCAPI";
};

} // namespace velta::zub::lipsyncapi
