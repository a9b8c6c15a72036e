#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>
#include <utility>

#include "avsync/Latency.h"
#include "avsync/Window.h"

namespace velta::zub::avsync {

/// What was measured at one time, with the corrections in force included. A latency is the time
/// from capture to rendering or showing. Only the difference of the two is used, so the clocks of
/// sender and device need not agree.
struct Reading {
    double audioLatencyMs = 0;   ///< From capture to rendering.
    double pictureLatencyMs = 0; ///< From capture to showing.
    double depthMs = 0; ///< Of the jitter buffer. Not used: the audio's latency contains it.
};

/// How much later than without help the sound is played and the pictures are shown.
struct Correction {
    unsigned long marginMs = 0; ///< Of the sound.
    double pictureDelayMs = 0;  ///< Of the pictures.
};

/// Decides how much to delay the sound or the pictures of a call so that both are in step. Reads no
/// clock, starts no thread, blocks and allocates nothing. One thread at a time.
///
/// The rule: a change must pay. A change can be seen or heard, so it has a price, in seconds: how
/// much longer the skew must be inside the window of IS-191, in the near future, for the change to
/// be worth it. To know the future, each latency is taken to go on by its trend (see `Latency`).
/// The new skew is chosen so that the trend leads through the middle of the window.
///
/// - The margin costs more than the pictures' delay, because it is heard. So small or short changes
///   move the pictures, and the margin moves when the pictures cannot help: for early sound.
/// - The price rises with the number of recent changes, and falls with the time already spent
///   outside. So noise and networks that no rule can follow do not cause a change in each reading.
/// - Delay costs too, most of all if sound and pictures are both delayed. So the delays stay small.
///
/// What it costs: sound that becomes late is answered after two readings (the median of three), and
/// sound that becomes early after half a second more, because the margin has to pay. Between
/// changes the skew moves freely inside the window, and noise near its edge leads outside for
/// moments. docs/performance.md compares it with other rules.
class Controller {
public:
    /// Any start will do: only differences count.
    using Time = std::chrono::steady_clock::time_point;

    /// The margin is a multiple of `granularityMs` up to `maxMarginMs`.
    Controller(unsigned long granularityMs, unsigned long maxMarginMs)
        : _granularityMs(std::max(granularityMs, 1ul)), _maxMarginMs(maxMarginMs) {}

    /// What should be in force from now on. `inForce` is what the engine has confirmed and the
    /// pictures are held back by, when `reading` was taken.
    ///
    /// Call it for each new reading, about ten times a second. Readings that come sooner than 50 ms
    /// after the last one change nothing, nor do latencies that are no numbers or differ by more
    /// than two seconds: then the clocks differ, not the lips. After a gap of five seconds it
    /// starts anew.
    Correction update(Time now, const Reading& reading, const Correction& inForce) {
        // What was asked for may need some time, or be refused, and pictures are held back almost
        // as asked. So what is in force says only how the reading came about.
        const Correction kept = _asked.value_or(inForce);
        const double passed = _updated ? seconds(now - *_updated) : longestInterval;
        if (!isPlausible(reading, inForce) || (_pictures.isKnown() && passed < shortestInterval)) {
            return kept;
        }
        if (passed > longestInterval) {
            restart();
        }
        _updated = now;
        _asked = kept;
        measure(now, std::clamp(passed, 0.0, longestInterval), reading, inForce);
        if (!_audio.isKnown()) {
            return kept;
        }
        const Correction best = bestFor(kept);
        if (!isSame(best, kept)) {
            ++_recent;
            _missed = 0;
        }
        _asked = best;
        return best;
    }

    /// Forgets the readings, for a new call or a new connection. Corrections stay as they are.
    void restart() {
        _audio = Latency(audioTrendMemory);
        _pictures = Latency(pictureTrendMemory);
        _missed = 0;
    }

private:
    using Duration = Time::duration;

    // Times in seconds, corrections in ms. Prices are in seconds inside the window.
    static constexpr double largestSkewMs = 2000;
    static constexpr double shortestInterval = 0.05;
    static constexpr double longestInterval = 5;
    static constexpr double audioTrendMemory = 1.5; // Jitter buffers often move in steps.
    static constexpr double pictureTrendMemory = 0.2;
    static constexpr double horizon = 0.8;
    static constexpr double price = 0.6;
    static constexpr double marginPrice = 0.5;
    static constexpr double recentPrice = 0.075; // For each recent change.
    static constexpr double recentMemory = 6;
    static constexpr double missedCredit = 0.5;  // For each second outside.
    static constexpr double delayPrice = 0.0016; // For each ms.
    static constexpr double commonDelayPrice = 0.0144;
    static constexpr double distancePrice = 0.002;   // For each ms outside: nearer is better.
    static constexpr double slowestMsPerSecond = 15; // Of an engine that applies a margin.
    static constexpr double toleranceMs = 10;

    static double seconds(Duration time) { return std::chrono::duration<double>(time).count(); }
    static double toMs(const Correction& c) { return static_cast<double>(c.marginMs); }
    // Less than 5 ms is no change.
    static bool isSame(const Correction& a, const Correction& b) {
        return a.marginMs == b.marginMs && std::abs(a.pictureDelayMs - b.pictureDelayMs) < 5;
    }

    // False for what is not a number, too.
    static bool isPlausible(const Reading& reading, const Correction& inForce) {
        const double audioMs = reading.audioLatencyMs - toMs(inForce);
        const double pictureMs = reading.pictureLatencyMs - inForce.pictureDelayMs;
        return std::abs(audioMs - pictureMs) <= largestSkewMs;
    }

    void measure(Time now, double passed, const Reading& reading, const Correction& inForce) {
        _pictures.add(passed, reading.pictureLatencyMs - inForce.pictureDelayMs);
        if (isMarginApplied(now, reading, inForce)) {
            _audio.add(passed, reading.audioLatencyMs - toMs(inForce));
        } else {
            _audio.dropTrend();
        }
        const double skew = skewMs(inForce);
        _missed =
            allowedSkew.contains(skew) ? std::max(_missed - 2 * passed, 0.0) : _missed + passed;
        _recent *= std::exp(-passed / recentMemory);
    }

    // An engine may apply a margin slowly. Until the margin shows in the latency, the sound is
    // taken to be as it was before, but no longer than a slow engine needs.
    bool isMarginApplied(Time now, const Reading& reading, const Correction& inForce) {
        if (inForce.marginMs != _confirmedMs) {
            _confirmedMs = inForce.marginMs;
            _confirmed = now;
            _wasShown = false;
        }
        const double change = toMs(inForce) - _appliedMs;
        const double shown = reading.audioLatencyMs - (_audio.levelMs() + _appliedMs);
        const double missing = change > 0 ? change - shown : shown - change;
        const double allowed = std::abs(change) / slowestMsPerSecond;
        // Twice, because one reading may be wrong.
        const bool isShown = std::exchange(_wasShown, missing <= toleranceMs) && _wasShown;
        if (_audio.isKnown() && std::abs(change) > 0 && !isShown &&
            seconds(now - _confirmed) < allowed) {
            return false;
        }
        _appliedMs = toMs(inForce);
        return true;
    }

    double skewMs(const Correction& c) const {
        return _audio.levelMs() + toMs(c) - _pictures.levelMs() - c.pictureDelayMs;
    }
    double trend() const { return _audio.trend() - _pictures.trend(); }

    Correction bestFor(const Correction& kept) const {
        // The trend leads from one side of the middle to the other.
        const double aim = std::clamp(allowedSkew.middle() - trend() * horizon / 2,
                                      allowedSkew.earliest, allowedSkew.latest);
        Correction best = kept;
        double most = 0;
        for (unsigned long marginMs = 0; marginMs <= _maxMarginMs; marginMs += _granularityMs) {
            Correction candidate{marginMs, 0};
            candidate.pictureDelayMs = std::round(std::max(skewMs(candidate) - aim, 0.0));
            const double profit = isSame(candidate, kept) ? 0 : profitOf(kept, candidate);
            if (profit > most) {
                most = profit;
                best = candidate;
            }
        }
        return best;
    }

    double profitOf(const Correction& kept, const Correction& candidate) const {
        const double gain = benefit(candidate) - benefit(kept);
        return gain + (gain > 0 ? missedCredit * _missed : 0) + delayCost(kept) -
               delayCost(candidate) - price - recentPrice * _recent -
               (candidate.marginMs != kept.marginMs ? marginPrice : 0);
    }

    double benefit(const Correction& c) const {
        const double skew = skewMs(c);
        const double distance =
            std::max({allowedSkew.earliest - skew, skew - allowedSkew.latest, 0.0});
        return secondsInside(skew) - distancePrice * distance;
    }

    // Of the next `horizon` seconds.
    double secondsInside(double skew) const {
        const double slope = trend();
        if (std::abs(slope) < 1) {
            return allowedSkew.contains(skew) ? horizon : 0;
        }
        const auto [enters, leaves] = std::minmax(
            {(allowedSkew.earliest - skew) / slope, (allowedSkew.latest - skew) / slope});
        return std::max(std::min(leaves, horizon) - std::max(enters, 0.0), 0.0);
    }

    static double delayCost(const Correction& c) {
        return delayPrice * (toMs(c) + c.pictureDelayMs) +
               commonDelayPrice * std::min(toMs(c), c.pictureDelayMs);
    }

    unsigned long _granularityMs;
    unsigned long _maxMarginMs;
    Latency _audio{audioTrendMemory};
    Latency _pictures{pictureTrendMemory};
    std::optional<Time> _updated;
    std::optional<Correction> _asked;
    double _missed = 0;             // Seconds outside the window.
    double _recent = 0;             // The number of changes; it forgets.
    unsigned long _confirmedMs = 0; // The margin.
    Time _confirmed;
    bool _wasShown = false;
    double _appliedMs = 0; // The margin that the latency of the sound shows.
};

} // namespace velta::zub::avsync
