#pragma once

#include <chrono>
#include <cstddef>
#include <functional>

namespace azubsim {

class AudioEngine;
class FaultPlan;

/// What commands change and report.
struct Controls {
    AudioEngine& engine;
    FaultPlan& faults;
    bool& isVerbose;
    bool isTap;                           ///< A real engine answers.
    std::function<std::size_t()> clients; ///< Connected now.
    /// Closes everything and listens again later. Resets the engine's margin.
    std::function<void(std::chrono::milliseconds)> goDown;
    std::function<void()> quit;
};

} // namespace azubsim
