#pragma once

namespace velta::zub::avsync {

/// A range of skew, in ms. Skew is the latency of the sound minus the latency of the pictures:
/// positive if the sound is late.
struct Window {
    double earliest; ///< The lowest skew inside.
    double latest;   ///< The highest skew inside.

    /// Whether the skew is inside; the limits are.
    constexpr bool contains(double skewMs) const { return skewMs >= earliest && skewMs <= latest; }
    /// The skew with the same room on both sides.
    constexpr double middle() const { return (earliest + latest) / 2; }
};

/// What a system should keep: ATSC IS-191.
inline constexpr Window allowedSkew{-15, 45};

/// Outside this window viewers notice the skew: detectability thresholds of ITU-R BT.1359.
inline constexpr Window undetectedSkew{-45, 125};

} // namespace velta::zub::avsync
