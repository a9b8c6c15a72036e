#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "lipsync/common/LipSyncNtpTimestamps.h"

namespace lipsyncctl {

/// A JSON object that keeps the order of its keys.
using Record = nlohmann::ordered_json;

/// The engine's timestamps, and when they were read.
struct Reading {
    double time = 0; ///< Seconds since 1970.
    velta::zub::common::LipSyncNtpTimestamps timestamps;

    /// The time from capture to rendering; ms.
    double latencyMs() const;

    Record record() const;

    /// One line for people.
    std::string text() const;
};

/// Seconds since 1970.
double now();
double ntpToUnix(unsigned long ntp);

/// Local time of day, with milliseconds.
std::string timeOfDay(double seconds);

} // namespace lipsyncctl
