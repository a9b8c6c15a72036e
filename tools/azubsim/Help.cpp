#include "tools/azubsim/Help.h"

#include <iomanip>
#include <sstream>

#include "tools/azubsim/Fault.h"

namespace azubsim {

std::string faultTable() {
    std::ostringstream table;
    for (const Fault::Description& fault : Fault::descriptions()) {
        const std::string usage = std::string(fault.name) + ' ' + fault.argument;
        table << "  " << std::left << std::setw(22) << usage << fault.effect << '\n';
    }
    return table.str();
}

std::string commandTable() {
    return "  call on|off           be in a call, or in none: then every verdict is 1003\n"
           "  fault FAULT           spoil answers so, in place of the faults before\n"
           "  fault none            spoil no answer\n"
           "  every N               spoil one answer in N\n"
           "  seed S, seed none     choose answers and faults at random, repeatably, or in turn\n"
           "  verbose on|off        show each message\n"
           "  status                show these settings\n"
           "  quit                  end\n";
}

} // namespace azubsim
