#pragma once

#include <optional>
#include <string>

#include "avsync/Ntp.h"
#include "lipsync/common/LipSyncNtpTimestamps.h"
#include "tools/common/Time.h"
#include "tools/lipsyncctl/Connection.h"

namespace lipsyncctl {

inline tools::Time fromNtp(std::uint64_t ntp) {
    return tools::toTime(velta::zub::avsync::systemTimeFrom(ntp));
}

/// The engine's timestamps, or why there are none, and when they were read.
struct Reading {
    tools::Time time{};
    velta::zub::common::LipSyncNtpTimestamps timestamps;
    std::optional<Failure> failure;

    /// The time from capture to rendering; ms.
    double latencyMs() const;

    /// Always has the same keys. After a failure there are no figures.
    Record record() const;

    /// One line for people. There must be timestamps.
    std::string text() const;
};

/// Asks the engine. Connects if there is no connection.
Reading read(Connection& connection);

} // namespace lipsyncctl
