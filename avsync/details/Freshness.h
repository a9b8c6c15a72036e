#pragma once

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include "avsync/Ntp.h"
#include "lipsyncapi/Service.h"

namespace velta::zub::avsync::details {

/// Judges whether the engine's timestamps say anything about the present.
///
/// The age of a reading is the time since the sound was received, plus an unknown difference of the
/// clocks. So ages are only compared with the smallest one. That grows a little with time, because
/// clocks drift.
class Freshness {
public:
    using Time = std::chrono::steady_clock::time_point;
    using Timestamps = common::LipSyncNtpTimestamps;

    enum class Verdict {
        Fresh,
        Frozen,  ///< The same as before: there is no sound at present.
        Stale,   ///< Received too long ago.
        Lagging, ///< All have been stale for some time, though new ones come: each answers an
                 ///< earlier request. Only a new connection helps.
    };

    Verdict judge(Time now, const Timestamps& timestamps) {
        if (_last && isSame(timestamps, _last->timestamps)) {
            _lagging.reset();
            return Verdict::Frozen;
        }
        const std::optional<Reading> last = std::exchange(_last, Reading{now, timestamps});
        const double progressMs = last ? msSince(*last) : 0;
        // Received before the last one: the engine's clock has been set back.
        if (!last || progressMs < -staleMs) {
            _ageMs = _smallestAgeMs = 0;
        } else {
            const std::chrono::duration<double, std::milli> passed = now - last->time;
            _ageMs += passed.count() - progressMs;
            _smallestAgeMs = std::min(_ageMs, _smallestAgeMs + passed.count() * largestDrift);
        }
        return verdict(now, progressMs > 0);
    }

    /// Forgets everything, for a new connection or a new call.
    void restart() { *this = Freshness(); }

private:
    static constexpr double staleMs = 1000;
    static constexpr double largestDrift = 0.001;
    static constexpr std::chrono::seconds patience{3};

    struct Reading {
        Time time;
        Timestamps timestamps;
    };

    static bool isSame(const Timestamps& a, const Timestamps& b) {
        return a.audioCaptureTimestamp == b.audioCaptureTimestamp &&
               a.audioRenderingTimestamp == b.audioRenderingTimestamp &&
               a.audioReceivingTimestamp == b.audioReceivingTimestamp;
    }

    double msSince(const Reading& earlier) const {
        return ntpMsBetween(earlier.timestamps.audioReceivingTimestamp,
                            _last->timestamps.audioReceivingTimestamp);
    }

    Verdict verdict(Time now, bool isNewer) {
        const bool isStale = _ageMs - _smallestAgeMs > staleMs;
        if (!isStale || !isNewer) {
            _lagging.reset();
            return isStale ? Verdict::Stale : Verdict::Fresh;
        }
        _lagging = _lagging.value_or(now);
        return now - *_lagging < patience ? Verdict::Stale : Verdict::Lagging;
    }

    std::optional<Reading> _last;
    double _ageMs = 0; // Of the first reading it is 0.
    double _smallestAgeMs = 0;
    std::optional<Time> _lagging; // Since when.
};

} // namespace velta::zub::avsync::details
