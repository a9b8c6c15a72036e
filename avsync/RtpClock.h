#pragma once

#include <cstdint>
#include <optional>

namespace velta::zub::avsync {

/// Turns the RTP timestamps of one stream into the sender's NTP time, by means of the sender
/// reports (RTCP SR) of that stream. Does not block, allocate or throw. One thread at a time.
///
/// A new stream (another SSRC, payload type or clock rate) needs a new object: its timestamps begin
/// anywhere, so a report of the old one says nothing about them.
class RtpClock {
public:
    /// The rate of the RTP timestamps in Hz: 90,000 for video, often 48,000 for audio. With 0
    /// nothing can be converted.
    explicit constexpr RtpClock(std::uint32_t rateHz) : _rateHz(rateHz) {}

    /// The NTP and the RTP timestamp of one sender report. They name the same moment.
    ///
    /// The newest report holds at once, even if it contradicts the last one, and also for the
    /// packets before it. A sender that sets its clock does so for sound and pictures, so
    /// whoever still believes the old report is wrong by the whole step. If the sender began its
    /// timestamps anew, those of the few packets that are still on their way become wrong by
    /// anything up to hours, which `Controller` ignores.
    ///
    /// A report with the NTP timestamp 0 comes from a sender without a clock, and is ignored.
    constexpr void addReport(std::uint64_t ntp, std::uint32_t rtp) {
        if (ntp != 0) {
            _ntp = ntp;
            _rtp = rtp;
        }
    }

    /// The sender's time, as NTP timestamp, at which what has this RTP timestamp was captured.
    /// Nothing before the first report.
    ///
    /// Right for timestamps within 2^31 ticks of the newest report, before or after it: 6 hours at
    /// 90 kHz. Errors of rounding do not add up, but between reports the sender's two clocks drift
    /// apart, by up to 0.1 ms each second.
    constexpr std::optional<std::uint64_t> captured(std::uint32_t rtp) const {
        if (_ntp == 0 || _rateHz == 0) {
            return std::nullopt;
        }
        // The difference wraps around just as the timestamps do. Its product fits in 64 bits.
        const auto ticks = static_cast<std::int32_t>(rtp - _rtp);
        const std::int64_t units = ticks * (std::int64_t{1} << 32) / _rateHz;
        return _ntp + static_cast<std::uint64_t>(units);
    }

private:
    std::uint32_t _rateHz;
    std::uint32_t _rtp = 0;
    std::uint64_t _ntp = 0; // 0: no report yet.
};

} // namespace velta::zub::avsync
