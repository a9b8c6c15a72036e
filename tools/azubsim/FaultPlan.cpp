#include "tools/azubsim/FaultPlan.h"

namespace azubsim {

void FaultPlan::setEvery(unsigned int every) {
    _every = every;
    _answers = 0;
}

void FaultPlan::setSeed(std::optional<std::uint32_t> seed) {
    _seed = seed;
    _random.seed(seed.value_or(0));
}

std::optional<Fault> FaultPlan::next() {
    if (_faults.empty()) {
        return std::nullopt;
    }
    // Use remainders, because distributions differ between standard libraries.
    if (_seed) {
        const bool isChosen = _random() % _every == 0;
        return isChosen ? std::optional(_faults[_random() % _faults.size()]) : std::nullopt;
    }
    if (++_answers % _every != 0) {
        return std::nullopt;
    }
    return _faults[_turn++ % _faults.size()];
}

} // namespace azubsim
