#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>

#include "Latest.h"
#include "Ntp.h"
#include "lipsyncapi/Service.h"

namespace video {

/// What the engine said about its audio, and the delays at that time.
struct Reading {
    using Clock = std::chrono::steady_clock;
    using Timestamps = velta::zub::common::LipSyncNtpTimestamps;

    Timestamps audio;
    Clock::time_point taken;
    bool isFrozen = false;  ///< The timestamps are the same as before.
    bool isSteered = false; ///< The delays were right for it.
    unsigned long marginMs = 0;
    double pictureDelayMs = 0;

    double audioLatenessMs() const {
        return ntpMsBetween(audio.audioCaptureTimestamp, audio.audioRenderingTimestamp);
    }

    double latenessWithoutMarginMs() const {
        return audioLatenessMs() - static_cast<double>(marginMs);
    }

    std::chrono::duration<double> age(Clock::time_point now) const { return now - taken; }

    bool isStale(Clock::time_point now) const { return age(now) > std::chrono::seconds(1); }

    /// Only a usable reading says anything about the skew.
    bool isUsable(Clock::time_point now) const { return !isFrozen && !isStale(now); }

    /// Call this when `audio` has arrived. It compares `audio` with the previous reading.
    void setTaken(const std::optional<Reading>& previous) {
        isFrozen = previous &&
                   audio.audioCaptureTimestamp == previous->audio.audioCaptureTimestamp &&
                   audio.audioRenderingTimestamp == previous->audio.audioRenderingTimestamp &&
                   audio.audioReceivingTimestamp == previous->audio.audioReceivingTimestamp;
        // The answer may have waited somewhere: its age counts from when the audio was received.
        const double ageMs = ntpMsBetween(audio.audioReceivingTimestamp, ntpNow());
        taken = Clock::now() - std::chrono::milliseconds(std::llround(std::max(ageMs, 0.0)));
    }
};

using LatestReading = Latest<Reading>;

} // namespace video
