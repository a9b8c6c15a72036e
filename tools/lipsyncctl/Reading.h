#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "lipsync/common/LipSyncNtpTimestamps.h"

namespace lipsyncctl {

/// An object that keeps its keys in order.
using Record = nlohmann::ordered_json;

/// The engine's timestamps, and when they were read.
struct Reading {
    double time = 0; ///< Seconds since 1970.
    velta::zub::common::LipSyncNtpTimestamps timestamps;

    /// From capture to rendering; ms.
    double latencyMs() const;

    Record record() const;

    /// In one line.
    std::string text() const;
};

/// Seconds since 1970.
double now();
double ntpToUnix(unsigned long ntp);

/// Local time of day, with milliseconds.
std::string timeOfDay(double seconds);

} // namespace lipsyncctl
