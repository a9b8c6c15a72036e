#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <new>
#include <string_view>
#include <utility>

#include "avsync/LipSyncTypes.h"
#include "avsync/Ntp.h"
#include "avsync/details/Engine.h"
#include "avsync/details/Freshness.h"
#include "avsync/details/Steering.h"
#include "avsync/details/SyncState.h"

namespace velta::zub::avsync::details {

/// The work of a `LipSync`'s thread.
class SyncThread {
public:
    explicit SyncThread(LipSyncOptions options)
        : _options(std::move(options)),
          _state(std::max(_options.deadline, shortest)),
          _engine(_options.socket, _options.deadline, _state) {}

    SyncState& state() { return _state; }

    void run() {
        blockSigpipe();
        Time next = Clock::now();
        do {
            Duration pause = _options.interval;
            unlessOutOfMemory([&] { pause = step(); }, [&] { pause = giveUp(); });
            // After a slow answer, skip the missed readings; after a time-out, pause all the same.
            const Time start = _engine.isConnected() ? next : Clock::now();
            next = std::max(start + std::max<Duration>(pause, shortest), Clock::now());
        } while (_state.sleepUntil(next));
        unlessOutOfMemory([this] { resetMargin(); }, [] {});
        _engine.disconnect();
        _state.end(_status.marginMs);
    }

private:
    using Clock = std::chrono::steady_clock;
    using Time = Clock::time_point;
    using Duration = Clock::duration;
    using Milliseconds = std::chrono::milliseconds;
    using Answer = Engine::Answer;

    static constexpr Milliseconds shortest{1};
    static constexpr Milliseconds shortestPause{100};
    static constexpr Milliseconds longestPause{2000};
    static constexpr Milliseconds askingPause{1000}; // Outside a call; when refused, the longest.
    static constexpr std::chrono::seconds longestGap{1}; // Without a picture or a reading.
    static constexpr double toleranceMs = 5;             // Pictures are held back almost as asked.

    // In this thread only: writing to an engine that has gone must not kill the process.
    static void blockSigpipe() {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    }

    // Callers may be compiled without exceptions.
    template <typename Action, typename Otherwise>
    static void unlessOutOfMemory(const Action& action, const Otherwise& otherwise) {
#ifdef __cpp_exceptions
        try {
            action();
        } catch (const std::bad_alloc&) {
            otherwise();
        }
#else
        action();
        static_cast<void>(otherwise);
#endif
    }

    // Needs no memory: the text is short enough to be kept in the string itself.
    Duration giveUp() {
        const Duration pause = reconnect("Out of memory");
        _state.publish(_status, {});
        return pause;
    }

    // Connects if necessary and takes a reading. Returns the pause until the next step.
    Duration step() {
        const Duration pause = read();
        if (_status.message.empty()) {
            _status.message = _steering.refusal();
        }
        _state.publish(_status, _options.onReading);
        return pause;
    }

    Duration read() {
        if (!_engine.isConnected()) {
            if (!_engine.connect()) {
                return pauseAfter(Answer::None);
            }
            restart();
        }
        if (_isInCall && !_isMarginSet && _steering.maySetMargin(Clock::now())) {
            const Answer answer = setMargin(_status.marginMs);
            if (answer != Answer::Success && answer != Answer::Refused) {
                return pauseAfter(answer);
            }
        }
        Engine::Timestamps audio;
        const Answer answer = _engine.getTimestamps(audio);
        if (answer != Answer::Success) {
            return pauseAfter(answer);
        }
        _refusalPause = shortestPause;
        if (!_isInCall) {
            restart();
            return shortest;
        }
        return use(audio);
    }

    // For a new connection or a new call. The next answer tells whether there is a call.
    void restart() {
        _status.isConnected = true;
        suspend("");
        _isInCall = true;
        _isMarginSet = false;
        _freshness.restart();
        _steering.restart();
    }

    Duration pauseAfter(Answer answer) {
        if (answer == Answer::None) {
            return reconnect(_engine.message());
        }
        suspend(_engine.message());
        _isInCall = _isInCall && answer != Answer::NotInCall;
        if (answer == Answer::Refused) {
            return std::exchange(_refusalPause, std::min(2 * _refusalPause, askingPause));
        }
        return answer == Answer::NotInCall ? askingPause : _options.interval;
    }

    Duration reconnect(std::string_view reason) {
        _engine.disconnect();
        _status.isConnected = false;
        suspend(reason);
        return std::exchange(_reconnectPause, std::min(2 * _reconnectPause, longestPause));
    }

    Answer setMargin(unsigned long ms) {
        _mayHaveMargin = _mayHaveMargin || ms != 0;
        const Answer answer = _engine.setMargin(ms);
        if (answer == Answer::Success) {
            _status.marginMs = ms;
            _mayHaveMargin = ms != 0;
            _isMarginSet = true;
            _steering.acceptMargin();
        } else if (answer == Answer::Refused) {
            _steering.refuseMargin(Clock::now(), _engine.message());
        }
        return answer;
    }

    Duration use(const Engine::Timestamps& audio) {
        const Time now = Clock::now();
        const Freshness::Verdict verdict = _freshness.judge(now, audio);
        if (verdict == Freshness::Verdict::Fresh) {
            return steer(now, audio);
        }
        if (verdict == Freshness::Verdict::Lagging) {
            return reconnect("The engine's answers are late");
        }
        // An engine may have new timestamps less often than they are read.
        if (now - _status.read > longestGap) {
            suspend(verdict == Freshness::Verdict::Frozen ? "The timestamps do not change"
                                                          : "The timestamps are old");
        }
        return _options.interval;
    }

    void suspend(std::string_view reason) {
        _status.isSteered = false;
        _status.message = reason;
    }

    Duration steer(Time now, const Engine::Timestamps& audio) {
        _reconnectPause = shortestPause;
        _status.message.clear();
        ++_status.readings;
        _status.read = now;
        _status.audioLatencyMs =
            ntpMsBetween(audio.audioCaptureTimestamp, audio.audioRenderingTimestamp);
        _status.depthMs = static_cast<double>(audio.jbmCurrentDepth);
        const auto picture = _state.picture();
        if (!picture || now - picture->told > longestGap) {
            suspend("No picture in the last second");
            return _options.interval;
        }
        _status.isSteered = true;
        _status.pictureLatencyMs = picture->latencyMs;
        _status.skewMs = _status.audioLatencyMs - picture->latencyMs;
        return apply(_steering.update(
            now, {_status.audioLatencyMs, _status.pictureLatencyMs, _status.depthMs},
            {_status.marginMs, picture->heldBackMs}));
    }

    // The pictures wait until the engine has confirmed the margin: both belong together.
    Duration apply(const Correction& correction) {
        const bool isHeard = correction.marginMs != _status.marginMs;
        const Answer answer = isHeard ? setMargin(correction.marginMs) : Answer::Success;
        if (answer != Answer::Success) {
            return answer == Answer::Refused ? _options.interval : pauseAfter(answer);
        }
        const bool isSeen =
            std::abs(correction.pictureDelayMs - _status.pictureDelayMs) >= toleranceMs;
        if (isSeen) {
            _status.pictureDelayMs = correction.pictureDelayMs;
            _state.setPictureDelay(correction.pictureDelayMs);
        }
        _status.changes += isHeard || isSeen ? 1 : 0;
        _status.marginChanges += isHeard ? 1 : 0;
        return _options.interval;
    }

    void resetMargin() {
        if (_options.resetsMargin && _mayHaveMargin &&
            (_engine.isConnected() || _engine.connect())) {
            setMargin(0);
        }
    }

    const LipSyncOptions _options;
    SyncState _state;
    Engine _engine;
    Freshness _freshness;
    Steering _steering;
    LipSyncStatus _status;
    bool _isInCall = true;
    bool _isMarginSet = false;   // On this connection and in this call.
    bool _mayHaveMargin = false; // The engine, even if it has not confirmed it.
    Milliseconds _reconnectPause = shortestPause;
    Milliseconds _refusalPause = shortestPause;
};

} // namespace velta::zub::avsync::details
