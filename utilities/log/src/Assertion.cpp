#include "utilities/log/Assertion.h"

#include <cstdlib>

#include "utilities/log/GenericLog.h"

namespace velta::utilities {

void assertionFailed(const char* source, int line, const char* condition, const char* message) {
    {
        StandardLog::Stream<details::Level::Fatal> stream("VELTA");
        stream << source << ':' << line << ": Assertion " << condition << " failed: " << message;
    }
    std::abort();
}

} // namespace velta::utilities
