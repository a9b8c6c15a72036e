#pragma once

#include <functional>
#include <string>

namespace tests {

/// Returns what `action` writes to standard error. Each record for the platform's log appears there
/// as a line "platform PRIORITY/TAG TEXT".
std::string logOf(const std::function<void()>& action);

} // namespace tests
