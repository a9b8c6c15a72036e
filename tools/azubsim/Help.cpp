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
    return "  call on|off           start or end the call; outside it requests get error 1003\n"
           "  fault FAULT           apply this fault instead of all previous ones\n"
           "  fault none            apply no fault\n"
           "  every N               apply a fault to one answer in N\n"
           "  seed S                choose at random which answers get which fault\n"
           "  seed none             let the faults take turns again\n"
           "  verbose on|off        print each message to standard error\n"
           "  status                print these settings\n"
           "  quit                  exit\n";
}

} // namespace azubsim
