#include "Report.h"

namespace video {

namespace {

const char* position(const Skew& skew, const Window& window) {
    return skew.isInside(window) ? "inside" : "OUTSIDE";
}

} // namespace

Report::Report(Reading::Clock::time_point start, std::FILE* csv) : _start(start), _csv(csv) {
    if (_csv != nullptr) {
        std::fputs(
            "time_s,picture_ms,picture_delay_ms,audio_ms,audio_without_margin_ms,margin_ms,"
            "jitter_depth_ms\n",
            _csv);
    }
    std::printf(
        "       pictures    lateness, ms      delay, ms         skew, ms (audio late: +)\n"
        "   s   a second   picture   audio   picture audio   without    with    from      to\n");
    std::fflush(stdout);
}

void Report::add(const Picture& picture, const std::optional<Reading>& reading) {
    const bool isUsable = reading && reading->isUsable(Reading::Clock::now());
    if (isUsable) {
        _row.add(picture.latenessMs(), reading->audioLatenessMs());
        _undelayed.add(picture.latenessMs() - picture.delayMs, reading->latenessWithoutMarginMs());
        if (reading->isSteered) {
            _steered.add(picture.latenessMs(), reading->audioLatenessMs());
        }
    }
    if (_csv != nullptr) {
        write(picture, isUsable ? &*reading : nullptr);
    }
    ++_shown;
    _picture = picture;
    _reading = reading;
}

// Without a usable reading the audio's columns are empty.
void Report::write(const Picture& picture, const Reading* usable) const {
    const std::chrono::duration<double> time = picture.due - _start;
    std::fprintf(_csv, "%.3f,%.1f,%.1f,", time.count(), picture.latenessMs(), picture.delayMs);
    if (usable != nullptr) {
        std::fprintf(_csv, "%.1f,%.1f,%lu,%lu\n", usable->audioLatenessMs(),
                     usable->latenessWithoutMarginMs(), usable->marginMs,
                     usable->audio.jbmCurrentDepth);
    } else {
        std::fputs(",,,\n", _csv);
    }
}

void Report::printRow(long second) {
    std::printf("%4ld %10zu", second, _shown);
    if (_row.count() > 0) {
        std::printf(" %9.1f %7.1f %9.0f %5lu %9.1f %7.1f %7.1f %7.1f", _row.pictureLateness(),
                    _row.audioLateness(), _picture->delayMs, _reading->marginMs, _undelayed.mean(),
                    _row.mean(), _row.smallest(), _row.largest());
    } else if (_picture) {
        std::printf(" %9.1f", _picture->latenessMs());
    }
    std::printf("%s\n", note().c_str());
    std::fflush(stdout);
    _shown = 0;
    _row = _undelayed = Skew();
}

// Why the last picture was not steered; empty if it was.
std::string Report::note() const {
    const auto now = Reading::Clock::now();
    if (!_reading) {
        return "  (no reading yet)";
    }
    if (_reading->isUsable(now)) {
        return _reading->isSteered ? "" : "  (measuring)";
    }
    char text[64];
    std::snprintf(text, sizeof(text), "  (%s: the reading is %.1f s old)",
                  _reading->isFrozen ? "frozen" : "stale", _reading->age(now).count());
    return text;
}

bool Report::conclude() const {
    if (_steered.count() == 0) {
        std::printf("\nNo picture was steered: the engine gave too few usable readings.\n");
        return false;
    }
    std::printf("\nSkew of %zu steered pictures: %.1f to %.1f ms\n", _steered.count(),
                _steered.smallest(), _steered.largest());
    std::printf(
        "%s the window of %.0f to %.0f ms (ATSC IS-191), %s that of %.0f to %.0f ms (ITU-R "
        "BT.1359)\n",
        position(_steered, allowedSkew), allowedSkew.earliest, allowedSkew.latest,
        position(_steered, undetectedSkew), undetectedSkew.earliest, undetectedSkew.latest);
    return _steered.isInside(allowedSkew);
}

} // namespace video
