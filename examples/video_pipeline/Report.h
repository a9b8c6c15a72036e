#pragma once

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>

#include "LatestReading.h"
#include "Pictures.h"
#include "Skew.h"

namespace video {

/// Prints one row a second, and writes the figures of every picture to a file on request.
class Report {
public:
    /// Prints the header. `csv` may be null.
    Report(Reading::Clock::time_point start, std::FILE* csv);

    void add(const Picture& picture, const std::optional<Reading>& reading);

    /// The row of the pictures since the last row, which ends `second` seconds after the start.
    void printRow(long second);

    /// Returns true if the skew of all steered pictures was right.
    bool conclude() const;

private:
    void write(const Picture& picture, const Reading* usable) const;
    std::string note() const;

    Reading::Clock::time_point _start;
    std::FILE* _csv;
    std::size_t _shown = 0; ///< In this row.
    Skew _row;              ///< Of the pictures with a usable reading.
    Skew _undelayed;        ///< The same pictures as they would be without delays.
    Skew _steered;
    std::optional<Picture> _picture;
    std::optional<Reading> _reading;
};

} // namespace video
