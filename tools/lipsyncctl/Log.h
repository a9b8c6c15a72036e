#pragma once

namespace lipsyncctl {

/// Drops the library's log lines from now on, except for fatal ones. No other thread may run yet.
void dropLog();

} // namespace lipsyncctl
