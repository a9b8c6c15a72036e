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

const Fault* FaultPlan::next() {
    if (_faults.empty()) {
        return nullptr;
    }
    // Use remainders, because distributions differ between standard libraries.
    if (_seed) {
        return _random() % _every == 0 ? &_faults[_random() % _faults.size()] : nullptr;
    }
    if (++_answers % _every != 0) {
        return nullptr;
    }
    return &_faults[_turn++ % _faults.size()];
}

} // namespace azubsim
