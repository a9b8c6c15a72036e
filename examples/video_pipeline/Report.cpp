#include "Report.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace video {

namespace {

using velta::zub::avsync::allowedSkew;
using velta::zub::avsync::undetectedSkew;

bool isUsable(const Report::Status& status) {
    return status.readings > 0 &&
           std::chrono::steady_clock::now() - status.read < std::chrono::seconds(1);
}

} // namespace

void Skews::add(const Picture& picture, double latenessMs, unsigned long marginMs) {
    const double skew = latenessMs - picture.latenessMs();
    smallest = count == 0 ? skew : std::min(smallest, skew);
    largest = count == 0 ? skew : std::max(largest, skew);
    pictureMs += picture.latenessMs();
    audioMs += latenessMs;
    uncorrected += skew + picture.delayMs - static_cast<double>(marginMs);
    allowed += allowedSkew.contains(skew) ? 1 : 0;
    undetected += undetectedSkew.contains(skew) ? 1 : 0;
    ++count;
}

Report::Report(std::string socket, std::FILE* csv) : _socket(std::move(socket)), _csv(csv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // Also into a pipe.
    if (_csv != nullptr) {
        std::fputs(
            "time_s,picture_ms,picture_delay_ms,audio_ms,audio_without_margin_ms,margin_ms,"
            "jitter_depth_ms\n",
            _csv);
    }
    std::printf(
        "       pictures    lateness, ms      delay, ms         skew, ms (audio late: +)        "
        "margin\n"
        "   s   a second   picture   audio   picture audio   without    with    from      to   "
        "changes\n");
}

void Report::add(const Picture& picture, const Status& status) {
    if (status.read != _status.read) {
        _marginMs = _status.marginMs;
    }
    _status = status;
    printState();
    if (picture.seconds >= static_cast<double>(_second + 1)) {
        printRow();
    }
    const double skew = status.audioLatencyMs - picture.latenessMs();
    _isSettled = status.isSteered && (_isSettled || allowedSkew.contains(skew));
    if (isUsable(status)) {
        _row.add(picture, status.audioLatencyMs, _marginMs);
    }
    if (isUsable(status) && _isSettled) {
        _steered.add(picture, status.audioLatencyMs, _marginMs);
    }
    if (_csv != nullptr) {
        write(picture, isUsable(status));
    }
    ++_shown;
    _delayMs = picture.delayMs;
}

void Report::printState() {
    const std::string state = _status.isConnected ? "Connected to " + _socket
                                                  : "Waiting for the engine: " + _status.message;
    if (state != _state && _status.message != Status().message) {
        std::printf("%s\n", state.c_str());
        _state = state;
    }
}

// Without a usable reading the audio's columns are empty.
void Report::write(const Picture& picture, bool isUsable) const {
    std::fprintf(_csv, "%.3f,%.1f,%.1f,", picture.seconds, picture.latenessMs(), picture.delayMs);
    if (isUsable) {
        std::fprintf(_csv, "%.1f,%.1f,%lu,%.0f\n", _status.audioLatencyMs,
                     _status.audioLatencyMs - static_cast<double>(_marginMs), _marginMs,
                     _status.depthMs);
    } else {
        std::fputs(",,,\n", _csv);
    }
}

void Report::printRow() {
    std::printf("%4ld %10zu", ++_second, _shown);
    if (_row.count > 0) {
        std::printf(" %9.1f %7.1f %9.0f %5lu %9.1f %7.1f %7.1f %7.1f %9lu",
                    _row.mean(_row.pictureMs), _row.mean(_row.audioMs), _delayMs, _marginMs,
                    _row.mean(_row.uncorrected), _row.mean(_row.audioMs - _row.pictureMs),
                    _row.smallest, _row.largest, _status.marginChanges - _marginChanges);
    }
    if (!_isSettled) {
        std::printf("  (%s)", _status.isSteered ? "measuring" : _status.message.c_str());
    }
    std::printf("\n");
    _shown = 0;
    _row = Skews();
    _marginChanges = _status.marginChanges;
}

bool Report::conclude(bool mayLeave) const {
    if (_steered.count == 0) {
        std::printf("\nNo picture was steered: the engine gave too few usable readings.\n");
        return false;
    }
    std::printf("\nSkew of %zu steered pictures: %.1f to %.1f ms, %lu changes, %lu of the margin\n",
                _steered.count, _steered.smallest, _steered.largest, _status.changes,
                _status.marginChanges);
    std::printf(
        "%.1f %% inside the window of %.0f to %.0f ms (ATSC IS-191), %.1f %% inside that of %.0f "
        "to %.0f ms (ITU-R BT.1359)\n",
        _steered.percent(_steered.allowed), allowedSkew.earliest, allowedSkew.latest,
        _steered.percent(_steered.undetected), undetectedSkew.earliest, undetectedSkew.latest);
    return mayLeave || _steered.undetected == _steered.count;
}

} // namespace video
