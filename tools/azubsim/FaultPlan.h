#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <vector>

#include "tools/azubsim/Fault.h"

namespace azubsim {

/// Says which answers are spoiled, and how.
///
/// Without a seed every N-th answer is, and the faults take turns. With a seed each answer is with
/// a chance of one in N, by a fault chosen at random; the same seed chooses the same again.
class FaultPlan {
public:
    void clear() { _faults.clear(); }
    void add(const Fault& fault) { _faults.push_back(fault); }

    /// At least 1, which spoils every answer.
    void setEvery(unsigned int every);
    void setSeed(std::optional<std::uint32_t> seed);

    /// The fault of the next answer, or null.
    const Fault* next();

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
