#pragma once

#include <cstdint>

namespace velta::zub::log {

/// Slows down a caller that logs too fast: every n-th record that this library writes to the
/// platform's log waits. Records from other code in the process are not counted.
///
/// Any thread. The counter is neither locked nor atomic, so concurrent records may be miscounted.
/// We accept this because the limit is approximate anyway.
struct ThroughputLimit {
    /// Reads "records/milliseconds", for example "10/5", and ignores text after it. Null or any
    /// other text means no limit.
    static ThroughputLimit fromSetting(const char* setting);

    bool isOn() const { return pauseUs != 0; }

    /// Counts one record. Blocks for the pause if the count has reached `limit`.
    void beforeRecord();

    std::uint32_t counter; ///< Records since the last pause.
    std::uint32_t limit;   ///< Records from one pause to the next.
    std::uint32_t pauseUs; ///< In microseconds; 0 means no limit.
};

/// The limit in force, read from `LIBLOG_THROUGHPUT_LIMIT` when the library is loaded.
extern ThroughputLimit throughput_limit;

} // namespace velta::zub::log
