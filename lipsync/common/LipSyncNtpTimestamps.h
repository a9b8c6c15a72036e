#pragma once

namespace velta::zub::common {

/// The engine's timestamps for the audio that it plays. The three times are in NTP 32.32 fixed
/// point: the upper half holds seconds since 1900, the lower half the fraction of a second. The
/// library passes all four values on unchanged.
struct LipSyncNtpTimestamps {
    unsigned long audioCaptureTimestamp = 0;   ///< When the far end captured the audio; NTP 32.32.
    unsigned long audioRenderingTimestamp = 0; ///< When this device plays it; NTP 32.32.
    unsigned long audioReceivingTimestamp = 0; ///< When this device received it; NTP 32.32.
    unsigned long jbmCurrentDepth = 0;         ///< Current depth of the jitter buffer; ms.
};

} // namespace velta::zub::common
