#pragma once

#include <cstddef>

namespace video {

/// Viewers notice a skew beyond these limits: detectability thresholds of ITU-R BT.1359, in ms.
/// Positive means that the audio is late.
constexpr double audioEarlyLimitMs = -45;
constexpr double audioLateLimitMs = 125;

/// The skew of several pictures.
class Skew {
public:
    void add(double pictureLatenessMs, double audioLatenessMs);
    void clear() { *this = Skew(); }

    std::size_t count() const { return _count; }

    // Means in ms; `count()` must not be 0.
    double pictureLateness() const { return _pictures / static_cast<double>(_count); }
    double audioLateness() const { return _audio / static_cast<double>(_count); }

    /// Audio lateness minus picture lateness; ms.
    double mean() const { return audioLateness() - pictureLateness(); }
    double smallest() const { return _smallest; }
    double largest() const { return _largest; }

    bool isInsideWindow() const {
        return _count > 0 && _smallest >= audioEarlyLimitMs && _largest <= audioLateLimitMs;
    }

private:
    std::size_t _count = 0;
    double _pictures = 0;
    double _audio = 0;
    double _smallest = 0;
    double _largest = 0;
};

/// The margin with the smallest skew: a multiple of `granularityMs` up to `maxMs`.
/// `skewWithoutMarginMs` is the skew at a margin of 0.
unsigned long bestMargin(double skewWithoutMarginMs, unsigned long granularityMs,
                         unsigned long maxMs);

} // namespace video
