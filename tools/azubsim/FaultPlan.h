#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <vector>

#include "tools/azubsim/Fault.h"

namespace azubsim {

/// Decides which answers get which fault.
///
/// Without a seed, every N-th answer gets a fault, and the faults take turns. With a seed, each
/// answer has a chance of one in N to get a random fault; the same seed repeats the choices.
class FaultPlan {
public:
    void clear() { _faults.clear(); }
    void add(const Fault& fault) { _faults.push_back(fault); }

    /// `every` is at least 1; 1 means every answer.
    void setEvery(unsigned int every);
    void setSeed(std::optional<std::uint32_t> seed);

    /// The fault for the next answer, if it gets one.
    std::optional<Fault> next();

    /// Applies a fault to an answer without its end marker.
    Reply apply(const Fault& fault, const std::string& answer) {
        return fault.apply(answer, _random);
    }

    const std::vector<Fault>& faults() const { return _faults; }
    unsigned int every() const { return _every; }
    std::optional<std::uint32_t> seed() const { return _seed; }

private:
    std::vector<Fault> _faults;
    unsigned int _every = 1;
    unsigned int _answers = 0;
    std::size_t _turn = 0;
    std::optional<std::uint32_t> _seed;
    std::mt19937 _random;
};

} // namespace azubsim
