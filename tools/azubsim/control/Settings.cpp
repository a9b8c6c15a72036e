#include <cstdint>

#include "tools/azubsim/control/Commands.h"
#include "tools/azubsim/engine/AudioEngine.h"
#include "tools/azubsim/engine/FaultPlan.h"
#include "tools/common/Number.h"

namespace azubsim {

namespace {

using Clock = AudioEngine::Clock;

// One day: more than a wrong clock needs, and far from the limits of a timestamp.
constexpr double largestOffsetMs = 86400000;
constexpr double largestDelayMs = 10000;

} // namespace

void addEngineCommands(Commands& commands, AudioEngine& engine) {
    commands.addOnOff(
        {"call", "on|off", "start or end the call; outside it, answer error 1003", "on"},
        [&](bool isOn) { engine.setInCall(isOn); });
    commands.addNumber(
        {"network", "MS", "set the network's delay; like jitter, ends --network", "60"},
        {0, largestDelayMs}, [&](auto number) { engine.setNetworkMs(*number); });
    commands.addNumber(
        {"jitter", "MS|auto", "set the depth of the jitter buffer, or let it vary", "auto"},
        {0, largestDelayMs}, [&](auto number) { engine.setJitterMs(number); });
    commands.addNumber({"slew", "MS_PER_S", "apply a new margin at this rate; 0, at once", "0"},
                       {0, 10000, false},
                       [&](auto number) { engine.setSlew(*number, Clock::now()); });
    commands.addNumber({"offset", "MS", "set the far end's clock ahead; below 0, back", "0"},
                       {-largestOffsetMs, largestOffsetMs},
                       [&](auto number) { engine.setOffsetMs(*number, Clock::now()); });
    commands.addNumber({"drift", "PPM", "make the far end's clock run fast; below 0, slow", "0"},
                       {-100000, 100000, false},
                       [&](auto number) { engine.setDriftPpm(*number, Clock::now()); });
    commands.addOnOff(
        {"freeze", "on|off", "repeat the same timestamps while the call goes on", "off"},
        [&](bool isOn) { isOn ? engine.freeze(Clock::now()) : engine.unfreeze(); });
    commands.addStatus(
        [&] { return "margin " + tools::formatNumber(engine.marginMs()) + " ms\n"; });
}

void addFaultCommands(Commands& commands, FaultPlan& faults) {
    commands.addText({"fault", "FAULT|none", "apply this fault instead of all others, or none"},
                     [&](const std::string& text) {
                         const auto fault =
                             text == "none" ? std::nullopt : std::optional(Fault(text));
                         return [&, fault] {
                             faults.clear();
                             if (fault) {
                                 faults.add(*fault);
                             }
                         };
                     });
    commands.addText(
        {"also", "FAULT", "apply this fault in turn with the others"},
        [&](const std::string& text) { return [&, fault = Fault(text)] { faults.add(fault); }; });
    commands.addNumber({"every", "N", "apply a fault to one answer in N", "1"}, {1, 1e9},
                       [&](auto number) { faults.setEvery(static_cast<unsigned int>(*number)); });
    commands.addNumber(
        {"seed", "S|none", "choose faults at random with this seed, or in turn", "none"},
        {0, UINT32_MAX}, [&](auto number) {
            faults.setSeed(number ? std::optional<std::uint32_t>(*number) : std::nullopt);
        });
    commands.addText({"only", "TARGET", "aim at a command, at \"client N\", or at all", "all"},
                     [&](const std::string& target) {
                         FaultPlan::checkTarget(target);
                         return [&, target] { faults.aim(target); };
                     });
    commands.addHelp("\nFaults:\n" + Fault::table());
    commands.addStatus([&] { return faults.status(); });
}

} // namespace azubsim
