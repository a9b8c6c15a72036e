#pragma once

#include <string>

#include "lipsync/common/LipSyncNtpTimestamps.h"
#include "tools/lipsyncctl/Failure.h"
#include "tools/lipsyncctl/Record.h"

namespace lipsyncctl {

/// The engine's timestamps, and when they were read.
struct Reading {
    double time = 0; ///< Seconds since 1970.
    velta::zub::common::LipSyncNtpTimestamps timestamps;
    unsigned long marginMs = 0; ///< The last one confirmed on this connection, not in the record.

    /// The time from capture to rendering; ms.
    double latencyMs() const;

    Record record() const;

    /// One line for people.
    std::string text() const;
};

/// Takes the place of a reading in a stream of records: the same keys, but no figures.
Record outageRecord(double time, const Failure& failure);

} // namespace lipsyncctl
