#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tools/azubsim/engine/Fault.h"
#include "tools/azubsim/protocol/Names.h"
#include "tools/common/Error.h"
#include "tools/common/Number.h"
#include "tools/common/Text.h"

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
    void setEvery(unsigned int every) {
        _every = every;
        _answers = 0;
    }

    void setSeed(std::optional<std::uint32_t> seed) {
        _seed = seed;
        _random.seed(seed.value_or(0));
    }

    /// Aims at the answers to a command, for example "GetAudioTs", to a client, for example
    /// "client 3", or at "all".
    void aim(const std::string& target) { _target = target; }

    /// Throws a `tools::Error` if this is no target.
    static void checkTarget(const std::string& target) {
        const tools::Words words(target);
        const int client = tools::parseInteger<int>(words.rest).value_or(0);
        tools::require((client > 0 && target == "client " + words.rest) || target == "all" ||
                           names::contains(names::commands, target),
                       "'" + target + "' is not one of " + names::joined(names::commands, ", ") +
                           ", client N and all");
    }

    /// The fault for the next answer, if it gets one.
    std::optional<Fault> next(int client, const std::string& command) {
        const bool isAimed =
            _target == "all" || _target == command || _target == "client " + std::to_string(client);
        // Use remainders, because distributions differ between standard libraries.
        if (_faults.empty() || !isAimed || (_seed ? _random() : ++_answers) % _every != 0) {
            return std::nullopt;
        }
        return _faults[(_seed ? _random() : _turn++) % _faults.size()];
    }

    /// Sets the reply: the engine's answer, which is without its end marker, or what a fault makes
    /// of it.
    void answer(Exchange& exchange, const std::string& answer, const std::optional<Fault>& fault) {
        exchange.reply = fault ? fault->apply(answer, _random) : deliver(answer);
        if (fault) {
            exchange.fault = fault->text();
            exchange.said = answer + endMarker;
        }
    }

    /// The faults, a line each.
    std::string status() const {
        std::string text = _faults.empty() ? "fault none\n" : "";
        for (const Fault& fault : _faults) {
            text += "fault " + fault.text() + '\n';
        }
        return text;
    }

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
