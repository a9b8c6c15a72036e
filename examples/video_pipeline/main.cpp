// A simulated video pipeline that keeps its pictures in step with a call's audio. It measures how
// late pictures and audio are, and asks the engine to delay the audio to match.

#include <getopt.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <utility>

#include "lipsyncapi/Service.h"
#include "video_pipeline/Ntp.h"
#include "video_pipeline/Pictures.h"
#include "video_pipeline/Skew.h"

namespace {

using namespace video;
using Clock = std::chrono::steady_clock;
using velta::zub::common::LipSyncNtpTimestamps;
using velta::zub::lipsyncapi::Service;

constexpr int exitOutsideWindow = 1;
constexpr int exitUsage = 2;

class Pipeline {
public:
    Pipeline(std::string socket, std::chrono::seconds length)
        : _socket(std::move(socket)), _start(Clock::now()), _end(_start + length) {}

    /// Runs for `length`. Returns true if the skew stayed inside the window.
    bool run() {
        while (!isOver()) {
            if (connect()) {
                showPictures();
                _service.disconnect();
            }
        }
        return conclude();
    }

private:
    bool isOver() const { return Clock::now() >= _end; }

    // Retries until it is connected or the time is up.
    bool connect() {
        while (!isOver()) {
            if (succeeded(_service.connect(_socket))) {
                return true;
            }
        }
        return false;
    }

    // Returns when a call fails or the time is up.
    void showPictures() {
        // The engine may have been restarted, so set its margin first.
        if (!succeeded(_service.getCapabilities(_granularityMs, _maxMarginMs)) || !setMargin(0)) {
            return;
        }
        printHeader();
        Clock::time_point nextRow = Clock::now() + std::chrono::seconds(1);
        Skew second;
        while (!isOver()) {
            const Picture picture = _pictures.next();
            LipSyncNtpTimestamps audio;
            if (!succeeded(_service.getAudioTimestamps(audio))) {
                return;
            }
            measure(picture, audio, second);
            if (Clock::now() >= nextRow) {
                nextRow += std::chrono::seconds(1);
                printRow(second);
                if (!steer(second)) {
                    return;
                }
                second.clear();
            }
        }
        if (second.count() > 0) {
            printRow(second);
        }
    }

    void measure(const Picture& picture, const LipSyncNtpTimestamps& audio, Skew& second) {
        const double pictureLateness = ntpMillisecondsBetween(picture.captured, picture.shown);
        const double audioLateness =
            ntpMillisecondsBetween(audio.audioCaptureTimestamp, audio.audioRenderingTimestamp);
        second.add(pictureLateness, audioLateness);
        if (_isSteering) {
            _steered.add(pictureLateness, audioLateness);
        }
        LipSyncNtpTimestamps timestamps;
        timestamps.audioCaptureTimestamp = picture.captured;
        timestamps.audioRenderingTimestamp = picture.shown;
        _service.setVideoTimestamps(timestamps);
    }

    // Sets the best margin for the last second, if it differs from the current one.
    bool steer(const Skew& second) {
        const double skewWithoutMargin = second.mean() - static_cast<double>(_marginMs);
        const unsigned long margin = bestMargin(skewWithoutMargin, _granularityMs, _maxMarginMs);
        if (margin != _marginMs && !setMargin(margin)) {
            return false;
        }
        _isSteering = true;
        return true;
    }

    bool setMargin(unsigned long marginMs) {
        if (!succeeded(_service.setAudioDelayMargin(marginMs))) {
            return false;
        }
        _marginMs = marginMs;
        return true;
    }

    // After a failure, waits a little: the caller then reconnects. A repeated failure is printed
    // only once.
    bool succeeded(const Service::Result& result) {
        if (result.isSuccess()) {
            return true;
        }
        if (result.format() != _lastFailure) {
            _lastFailure = result.format();
            std::printf("Waiting for the engine: %s\n", _lastFailure.c_str());
            std::fflush(stdout);
        }
        _isSteering = false;
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        return false;
    }

    void printHeader() {
        _lastFailure.clear();
        std::printf(
            "Connected to %s: margins of 0 to %lu ms in steps of %lu ms\n\n"
            "        lateness, ms      margin     skew, ms (audio late: +)\n"
            "   s   picture   audio      ms     without    with    from      to\n",
            _socket.c_str(), _maxMarginMs, _granularityMs);
    }

    void printRow(const Skew& second) const {
        const auto elapsed =
            std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - _start);
        const double without = second.mean() - static_cast<double>(_marginMs);
        std::printf("%4d %9.1f %7.1f %7lu %11.1f %7.1f %7.1f %7.1f%s\n",
                    static_cast<int>(elapsed.count()), second.pictureLateness(),
                    second.audioLateness(), _marginMs, without, second.mean(), second.smallest(),
                    second.largest(), _isSteering ? "" : "  (measuring)");
        std::fflush(stdout);
    }

    bool conclude() const {
        if (_steered.count() == 0) {
            std::printf(
                "\nNo picture was steered: that needs a second of readings without a failure.\n");
            return false;
        }
        std::printf(
            "\nSkew of %zu steered pictures: %.1f to %.1f ms, %s the window of %.0f to "
            "%.0f ms (ITU-R BT.1359)\n",
            _steered.count(), _steered.smallest(), _steered.largest(),
            _steered.isInsideWindow() ? "inside" : "OUTSIDE", audioEarlyLimitMs, audioLateLimitMs);
        return _steered.isInsideWindow();
    }

    Service _service;
    std::string _socket;
    Clock::time_point _start;
    Clock::time_point _end;
    Pictures _pictures;
    unsigned long _granularityMs = 0;
    unsigned long _maxMarginMs = 0;
    unsigned long _marginMs = 0;
    bool _isSteering = false;
    std::string _lastFailure;
    Skew _steered;
};

void printUsage(std::FILE* stream) {
    std::fprintf(stream,
                 "Usage: video_pipeline [--socket PATH] [--seconds N]\n"
                 "Adjusts the lip sync of a simulated call for N seconds: 2 to 86400, default 10.\n"
                 "Exit status: 0 if the skew stayed inside %.0f to %.0f ms, 1 if not, 2 for wrong\n"
                 "usage.\n",
                 audioEarlyLimitMs, audioLateLimitMs);
}

} // namespace

int main(int argc, char** argv) {
    std::string socket = Service::defaultLipsyncSocketName;
    long seconds = 10;
    const option options[] = {{"socket", required_argument, nullptr, 's'},
                              {"seconds", required_argument, nullptr, 'n'},
                              {"help", no_argument, nullptr, 'h'},
                              {nullptr, 0, nullptr, 0}};
    char* rest = nullptr;
    for (int option; (option = getopt_long(argc, argv, "h", options, nullptr)) != -1;) {
        switch (option) {
            case 's': socket = optarg; break;
            case 'n':
                seconds = std::strtol(optarg, &rest, 10);
                if (*rest != '\0' || seconds < 2 || seconds > 86400) {
                    std::fprintf(stderr, "video_pipeline: --seconds must be 2 to 86400, not '%s'\n",
                                 optarg);
                    printUsage(stderr);
                    return exitUsage;
                }
                break;
            case 'h': printUsage(stdout); return EXIT_SUCCESS;
            default: printUsage(stderr); return exitUsage;
        }
    }
    if (optind != argc) {
        std::fprintf(stderr, "video_pipeline: unexpected argument '%s'\n", argv[optind]);
        printUsage(stderr);
        return exitUsage;
    }
    // Writing to an engine that has gone must not kill this process.
    std::signal(SIGPIPE, SIG_IGN);
    return Pipeline(socket, std::chrono::seconds(seconds)).run() ? EXIT_SUCCESS : exitOutsideWindow;
}
