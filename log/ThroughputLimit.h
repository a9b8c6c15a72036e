#pragma once

#include <cstdint>

namespace velta::zub::log {

/// Slows down a caller that logs too fast: every n-th record that this library writes to the
/// platform's log waits. Records that other code in the process writes are not counted.
///
/// Shared by all threads without a lock or an atomic: concurrent records may be miscounted, which
/// is accepted, because the limit is approximate anyway.
struct ThroughputLimit {
    /// Reads "records/milliseconds", for example "10/5". Null and anything else mean no limit.
    static ThroughputLimit fromSetting(const char* setting);

    bool isOn() const { return pauseUs != 0; }

    /// Counts one record, and pauses if it is the last one before a pause.
    void beforeRecord();

    std::uint32_t counter; ///< Records since the last pause.
    std::uint32_t limit;   ///< Records from one pause to the next.
    std::uint32_t pauseUs; ///< Microseconds; 0 means no limit.
};

/// The limit in force, read from `LIBLOG_THROUGHPUT_LIMIT` when the library is loaded.
extern ThroughputLimit throughput_limit;

} // namespace velta::zub::log
