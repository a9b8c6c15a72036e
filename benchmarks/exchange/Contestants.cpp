#include "benchmarks/exchange/Contestants.h"

#include <stdexcept>

#include "benchmarks/exchange/BusContestant.h"
#include "benchmarks/exchange/FloorContestant.h"
#include "benchmarks/exchange/LibraryContestant.h"

namespace exchange {

std::vector<std::string> contestantNames() {
    return {"floor", "library", "library-silent", "sd-bus"};
}

std::unique_ptr<Contestant> makeContestant(const std::string& name) {
    if (name == "floor") {
        return std::make_unique<FloorContestant>();
    }
    if (name == "library") {
        return std::make_unique<LibraryContestant>(LogOutput::Kind::File);
    }
    if (name == "library-silent") {
        return std::make_unique<LibraryContestant>(LogOutput::Kind::Nowhere);
    }
    if (name == "sd-bus") {
        return std::make_unique<BusContestant>();
    }
    throw std::invalid_argument("no contestant " + name);
}

} // namespace exchange
