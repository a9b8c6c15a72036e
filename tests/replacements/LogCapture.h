#pragma once

#include <functional>
#include <string>

namespace tests {

/// What `action` writes to the log: standard error, with a line "platform PRIORITY/TAG TEXT" for
/// each record that goes to the platform's log.
std::string logOf(const std::function<void()>& action);

} // namespace tests
