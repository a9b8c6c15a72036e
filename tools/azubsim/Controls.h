#pragma once

#include <chrono>
#include <cstddef>
#include <functional>

namespace azubsim {

class AudioEngine;
class FaultPlan;

/// Where answers come from.
enum class Source { Simulation, Tap, Recording };

/// What commands change and report.
struct Controls {
    AudioEngine& engine;
    FaultPlan& faults;
    bool& isVerbose;
    Source source;
    std::function<std::size_t()> clients; ///< Connected now.
    /// Closes everything and listens again later. Resets the engine's margin.
    std::function<void(std::chrono::milliseconds)> goDown;
    std::function<void()> quit;
};

} // namespace azubsim
