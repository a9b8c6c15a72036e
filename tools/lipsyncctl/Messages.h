#pragma once

#include <string>

namespace lipsyncctl {

/// Prints one line in this program's name to standard error.
void complain(const std::string& text);

/// Drops the library's log lines from now on, except for fatal ones. No other thread may run yet.
void dropLog();

} // namespace lipsyncctl
