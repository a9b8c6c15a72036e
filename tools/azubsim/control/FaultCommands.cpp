#include <cstdint>

#include "tools/azubsim/control/Settings.h"

namespace azubsim {

void addFaultCommands(Commands& commands, FaultPlan& faults) {
    commands.addText("fault", "FAULT|none", "apply this fault instead of all others, or none",
                     [&](const std::string& text) {
                         std::optional<Fault> fault;
                         if (text != "none") {
                             fault.emplace(text);
                         }
                         return [&, fault] {
                             faults.clear();
                             if (fault) {
                                 faults.add(*fault);
                             }
                         };
                     });
    commands.addText(
        "also", "FAULT", "apply this fault in turn with the others",
        [&](const std::string& text) { return [&, fault = Fault(text)] { faults.add(fault); }; });
    commands.addNumber("every", "N", "apply a fault to one answer in N", {1, 1e9},
                       [&](auto number) { faults.setEvery(static_cast<unsigned int>(*number)); });
    commands.addNumber(
        "seed", "S|none", "choose faults at random with this seed, or in turn", {0, UINT32_MAX},
        [&](auto number) {
            faults.setSeed(number ? std::optional<std::uint32_t>(*number) : std::nullopt);
        });
    commands.addText("only", "TARGET", "aim at a command, at \"client N\", or at all",
                     [&](const std::string& target) {
                         FaultPlan::checkTarget(target);
                         return [&, target] { faults.aim(target); };
                     });
    commands.addHelp("\nFaults:\n" + Fault::table());
    commands.addStatus([&] { return faults.status(); });
}

} // namespace azubsim
