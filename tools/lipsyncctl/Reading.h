#pragma once

#include <string>

#include "lipsync/common/LipSyncNtpTimestamps.h"
#include "tools/common/Time.h"
#include "tools/lipsyncctl/Connection.h"
#include "tools/lipsyncctl/Failure.h"

namespace lipsyncctl {

/// The engine's timestamps, and when they were read.
struct Reading {
    tools::Time time{};
    velta::zub::common::LipSyncNtpTimestamps timestamps;

    /// The time from capture to rendering; ms.
    double latencyMs() const;

    Record record() const;

    /// One line for people.
    std::string text() const;
};

/// Asks the engine. Throws a `Failure`.
Reading read(Connection& connection);

/// Takes the place of a reading in a stream of records: the same keys, but no figures.
Record outageRecord(const Failure& failure);

} // namespace lipsyncctl
