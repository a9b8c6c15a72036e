#pragma once

namespace velta::zub::common {

/// The engine's timestamps for the audio it plays. The three times are NTP timestamps in 32.32
/// fixed point: seconds since 1900 in the upper half, their fraction in the lower. The library
/// passes all four values through as they are.
struct LipSyncNtpTimestamps {
    unsigned long audioCaptureTimestamp = 0;   ///< When the far end captured it; NTP 32.32.
    unsigned long audioRenderingTimestamp = 0; ///< When it is heard here; NTP 32.32.
    unsigned long audioReceivingTimestamp = 0; ///< When it arrived here; NTP 32.32.
    unsigned long jbmCurrentDepth = 0;         ///< Current depth of the jitter buffer; ms.
};

} // namespace velta::zub::common
