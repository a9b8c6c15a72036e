#pragma once

#include <cstddef>

namespace video {

/// A range of skew in ms. Positive means that the audio is late.
struct Window {
    double earliest;
    double latest;
};

/// What a system should keep: ATSC IS-191.
constexpr Window allowedSkew{-15, 45};

/// Outside this window viewers notice the skew: detectability thresholds of ITU-R BT.1359.
constexpr Window undetectedSkew{-45, 125};

/// The skew of a number of pictures.
class Skew {
public:
    void add(double pictureLatenessMs, double audioLatenessMs);

    std::size_t count() const { return _count; }

    // Means in ms; `count()` must not be 0.
    double pictureLateness() const { return _pictures / static_cast<double>(_count); }
    double audioLateness() const { return _audio / static_cast<double>(_count); }

    /// Audio lateness minus picture lateness; ms.
    double mean() const { return audioLateness() - pictureLateness(); }
    double smallest() const { return _smallest; }
    double largest() const { return _largest; }

    bool isInside(const Window& window) const {
        return _count > 0 && _smallest >= window.earliest && _largest <= window.latest;
    }

private:
    std::size_t _count = 0;
    double _pictures = 0;
    double _audio = 0;
    double _smallest = 0;
    double _largest = 0;
};

} // namespace video
