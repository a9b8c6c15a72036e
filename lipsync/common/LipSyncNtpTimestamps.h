#pragma once

namespace velta::zub::common {

static_assert(sizeof(unsigned long) == 8,
              "the timestamps need 64 bits in an unsigned long: build for a 64-bit platform");

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
