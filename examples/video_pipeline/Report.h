#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

#include "Pictures.h"
#include "avsync/LipSync.h"

namespace video {

/// The skew of a number of pictures.
struct Skews {
    std::size_t count = 0;
    double pictureMs = 0; ///< Sums of latenesses.
    double audioMs = 0;
    double uncorrected = 0; ///< Sum of the skews without margin and delay.
    double smallest = 0;    ///< Skew.
    double largest = 0;
    std::size_t allowed = 0; ///< Pictures inside the two windows.
    std::size_t undetected = 0;

    void add(const Picture& picture, double latenessMs, unsigned long marginMs);
    double mean(double sum) const { return sum / static_cast<double>(count); }
    double percent(std::size_t part) const { return 100 * mean(static_cast<double>(part)); }
};

/// Prints the state when it changes and one row a second, and writes the figures of every picture
/// to a file on request.
class Report {
public:
    using Status = velta::zub::avsync::LipSync::Status;

    /// Prints the header. `csv` may be null.
    Report(std::string socket, std::FILE* csv);

    void add(const Picture& picture, const Status& status);

    /// Returns true if pictures were steered, and `mayLeave` or nobody would notice the skew of
    /// any.
    bool conclude(bool mayLeave) const;

private:
    void printState();
    void printRow();
    void write(const Picture& picture, bool isUsable) const;

    std::string _socket;
    std::FILE* _csv;
    std::string _state;
    Status _status;              ///< The last one.
    unsigned long _marginMs = 0; ///< In the last reading.
    bool _isSettled = false;     ///< The skew has been right since the steering began.
    long _second = 0;
    std::size_t _shown = 0; ///< In this row.
    double _delayMs = 0;    ///< Of the last picture.
    unsigned long _marginChanges = 0;
    Skews _row;
    Skews _steered;
};

} // namespace video
