#include "tools/azubsim/engine/FaultPlan.h"

#include "tools/azubsim/protocol/Names.h"
#include "tools/common/Error.h"
#include "tools/common/Number.h"
#include "tools/common/Text.h"

namespace azubsim {

void FaultPlan::setEvery(unsigned int every) {
    _every = every;
    _answers = 0;
}

void FaultPlan::setSeed(std::optional<std::uint32_t> seed) {
    _seed = seed;
    _random.seed(seed.value_or(0));
}

void FaultPlan::checkTarget(const std::string& target) {
    const tools::Words words(target);
    const int client = tools::parseInteger<int>(words.rest).value_or(0);
    tools::require((words.first == "client" && client > 0) || target == "all" ||
                       names::contains(names::commands, target),
                   "'" + target + "' is not one of " + names::joined(names::commands, ", ") +
                       ", client N and all");
}

std::optional<Fault> FaultPlan::next(int client, const std::string& command) {
    const bool isAimed =
        _target == "all" || _target == command || _target == "client " + std::to_string(client);
    // Use remainders, because distributions differ between standard libraries.
    if (_faults.empty() || !isAimed || (_seed ? _random() : ++_answers) % _every != 0) {
        return std::nullopt;
    }
    return _faults[(_seed ? _random() : _turn++) % _faults.size()];
}

void FaultPlan::answer(Exchange& exchange, const std::string& answer,
                       const std::optional<Fault>& fault) {
    exchange.reply = fault ? fault->apply(answer, _random) : deliver(answer);
    if (fault) {
        exchange.fault = fault->text();
        exchange.said = answer + endMarker;
    }
}

std::string FaultPlan::status() const {
    std::string text = _faults.empty() ? "fault none\n" : "";
    for (const Fault& fault : _faults) {
        text += "fault " + fault.text() + '\n';
    }
    return text;
}

} // namespace azubsim
