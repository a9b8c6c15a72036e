#include "tools/azubsim/Help.h"

#include <iomanip>
#include <sstream>

#include "tools/azubsim/Fault.h"

namespace azubsim {

std::string faultTable() {
    std::ostringstream table;
    for (const Fault::Description& fault : Fault::descriptions()) {
        std::string usage = std::string(fault.name) + ' ' + fault.argument;
        table << "  " << std::left << std::setw(22) << usage << fault.effect << '\n';
    }
    return table.str();
}

} // namespace azubsim
