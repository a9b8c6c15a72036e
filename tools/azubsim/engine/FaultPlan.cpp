#include "tools/azubsim/engine/FaultPlan.h"

#include "tools/azubsim/protocol/Names.h"
#include "tools/common/Error.h"
#include "tools/common/Lines.h"
#include "tools/common/Number.h"

namespace azubsim {

void FaultPlan::setEvery(unsigned int every) {
    _every = every;
    _answers = 0;
}

void FaultPlan::setSeed(std::optional<std::uint32_t> seed) {
    _seed = seed;
    _random.seed(seed.value_or(0));
}

void FaultPlan::aim(const std::string& target) {
    const tools::Words words(target);
    const int client = tools::parseInteger<int>(words.rest).value_or(0);
    if (words.first == "client" && client > 0) {
        _onlyClient = client;
    } else if (names::contains(names::commands, target)) {
        _onlyCommand = target;
    } else if (target == "all") {
        _onlyCommand.clear();
        _onlyClient = 0;
    } else {
        throw tools::Error("'" + target + "' is not one of " +
                           names::joined(names::commands, ", ") + ", client N and all");
    }
}

std::optional<Fault> FaultPlan::next(int client, const std::string& command) {
    const bool isAimed = (_onlyCommand.empty() || _onlyCommand == command) &&
                         (_onlyClient == 0 || _onlyClient == client);
    // Use remainders, because distributions differ between standard libraries.
    if (_faults.empty() || !isAimed || (_seed ? _random() : ++_answers) % _every != 0) {
        return std::nullopt;
    }
    return _faults[(_seed ? _random() : _turn++) % _faults.size()];
}

std::string FaultPlan::status() const {
    std::string text = _faults.empty() ? "fault none\n" : "";
    for (const Fault& fault : _faults) {
        text += "fault " + fault.text() + '\n';
    }
    text += "every " + std::to_string(_every) + '\n';
    text += "seed " + (_seed ? std::to_string(*_seed) : "none") + '\n';
    const std::string command = _onlyCommand.empty() ? "" : "only " + _onlyCommand + '\n';
    const std::string client =
        _onlyClient == 0 ? "" : "only client " + std::to_string(_onlyClient) + '\n';
    return text + (command.empty() && client.empty() ? "only all\n" : command + client);
}

} // namespace azubsim
