#pragma once

#include "utilities/log/GenericLog.h"

namespace velta::zub::lipsyncapi {

/// The log and the tag for the log lines of API calls.
struct Logger {
    using Log = utilities::StandardLog;
    static constexpr const char* tag = "AZUBLIPSYNCAPI";
};

} // namespace velta::zub::lipsyncapi
