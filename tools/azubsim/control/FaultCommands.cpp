#include <cstdint>

#include "tools/azubsim/control/Commands.h"
#include "tools/azubsim/engine/FaultPlan.h"

namespace azubsim {

void Commands::addFaults(FaultPlan& faults) {
    add(Command::text(
        "fault", "FAULT|none", "apply this fault instead of all previous ones, or none",
        [](const std::string& text) {
            if (text != "none") {
                Fault{text};
            }
        },
        [&](const std::string& text) {
            faults.clear();
            if (text != "none") {
                faults.add(Fault(text));
            }
        }));
    add(Command::number("every", "N", "apply a fault to one answer in N", {1, 1e9},
                        [&](auto number) { faults.setEvery(static_cast<unsigned int>(*number)); }));
    add(Command::number("seed", "S|none", "choose faults at random with this seed, or in turn",
                        {0, UINT32_MAX}, [&](auto number) {
                            faults.setSeed(number ? std::optional<std::uint32_t>(*number)
                                                  : std::nullopt);
                        }));
    add(Command::text("only", "TARGET", "aim at a command, at \"client N\", or at all",
                      FaultPlan::checkTarget,
                      [&](const std::string& target) { faults.aim(target); }));
    _arguments += "Faults:\n" + Fault::table();
    addStatus([&] { return faults.status(); });
}

} // namespace azubsim
