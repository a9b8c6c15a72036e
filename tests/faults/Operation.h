#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lipsyncapi/Service.h"
#include "tests/replacements/SystemCalls.h"

namespace tests {

/// A service and its caller's variables.
struct Caller {
    std::optional<velta::zub::lipsyncapi::Service> service{std::in_place};
    std::string socketName;
    unsigned long granularityMs = 1;
    unsigned long maxMs = 2;
    unsigned long marginMs = 3;
    velta::zub::common::LipSyncNtpTimestamps timestamps{5, 6, 7, 8};
};

/// What a call leaves behind.
struct Outcome {
    std::string result;  ///< Formatted, or "bad_alloc".
    std::string outputs; ///< The caller's variables, and the margin that the service knows.
    std::string request; ///< What the engine got.
    bool isConnected = false;

    std::string text() const {
        return result + '\n' + outputs + '\n' + request + (isConnected ? "connected" : "");
    }
};

/// The outputs when nothing was stored.
inline const char* const untouched = "1 2 3 5 6 7 8 60";

/// One call of a service in one state.
struct Operation {
    const char* name;
    bool isConnected; ///< Beforehand.
    velta::zub::lipsyncapi::Service::Result (*run)(Caller& caller);
    int systemCalls; ///< That it makes.
    Outcome outcome; ///< When nothing fails.
    std::string answer;
    std::string socketName;
};

/// All operations, with all the ends that they come to by themselves.
const std::vector<Operation>& operations();

/// What is to fail during a call; nothing by default.
struct Fault {
    int allocation = 0; ///< The n-th.
    std::size_t largestTransfer = SIZE_MAX;
    Call call = Call::Socket;
    int n = 0; ///< The n-th of these system calls, and many after it.
    int error = 0;
};

struct Observation : Outcome {
    std::string record;     ///< Of the log; empty if there was none.
    bool hasFailed = false; ///< Whether the fault has come up.
    int writes = 0;
    int reads = 0;
    long lostBlocks = 0; ///< Not freed when the service was gone.
    std::size_t lostBytes = 0;
};

/// Runs an operation on a service of its own. Checks on the way that descriptors are open only for
/// as long as there is a connection, and that the service works once it is connected anew.
Observation observe(const Operation& operation, const Fault& fault = {});

} // namespace tests
