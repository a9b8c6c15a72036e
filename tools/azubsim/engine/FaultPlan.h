#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tools/azubsim/engine/Fault.h"

namespace azubsim {

/// Decides which answers get which fault.
///
/// Without a seed, every N-th answer gets a fault, and the faults take turns. With a seed, each
/// answer has a chance of one in N to get a random fault; the same seed repeats the choices.
/// Answers that the faults do not aim at are not counted.
class FaultPlan {
public:
    void clear() { _faults.clear(); }
    void add(const Fault& fault) { _faults.push_back(fault); }

    /// `every` is at least 1; 1 means every answer.
    void setEvery(unsigned int every);
    void setSeed(std::optional<std::uint32_t> seed);

    /// Aims at the answers to a command, for example "GetAudioTs", to a client, for example
    /// "client 3", or at "all".
    void aim(const std::string& target) { _target = target; }

    /// Throws a `tools::Error` if this is no target.
    static void checkTarget(const std::string& target);

    /// The fault for the next answer, if it gets one.
    std::optional<Fault> next(int client, const std::string& command);

    /// Spoils the engine's answer, which is without its end marker, if there is a fault.
    void answer(Exchange& exchange, const std::string& answer, const std::optional<Fault>& fault);

    /// The faults, a line each.
    std::string status() const;

private:
    std::vector<Fault> _faults;
    unsigned int _every = 1;
    unsigned int _answers = 0;
    std::size_t _turn = 0;
    std::optional<std::uint32_t> _seed;
    std::mt19937 _random;
    std::string _target = "all";
};

} // namespace azubsim
