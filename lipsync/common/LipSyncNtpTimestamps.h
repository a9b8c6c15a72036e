#pragma once

namespace velta::zub::common {

/// The engine's timestamps for the audio that it plays. The library passes all four values on
/// unchanged. Units and clocks are assumed; see docs/lip-sync.md to check: the times are NTP 32.32
/// fixed point, seconds since 1900 in the upper half, fractions of a second in the lower.
struct LipSyncNtpTimestamps {
    unsigned long audioCaptureTimestamp = 0;   ///< When the far end captured it; sender's clock.
    unsigned long audioRenderingTimestamp = 0; ///< When this device plays it; this device's clock.
    unsigned long audioReceivingTimestamp = 0; ///< When it arrived here; this device's clock.
    unsigned long jbmCurrentDepth = 0;         ///< Current depth of the jitter buffer; ms.
};

} // namespace velta::zub::common
