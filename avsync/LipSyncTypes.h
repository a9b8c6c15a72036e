#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "lipsyncapi/Service.h"

namespace velta::zub::avsync {

/// What a `LipSync` is doing. Latencies contain the corrections in force.
struct LipSyncStatus {
    bool isConnected = false; ///< To the engine; also while it is not in a call.

    /// Why it is not connected or not steered, or why the margin is not as wanted; one line, for
    /// people. Empty if all is well.
    std::string message = "No reading yet";

    /// When the last usable reading was taken; the epoch of the clock if there was none. The next
    /// four values are of that time.
    std::chrono::steady_clock::time_point read;
    double audioLatencyMs = 0;   ///< From capture to rendering.
    double pictureLatencyMs = 0; ///< From capture to showing; the last one known.
    double depthMs = 0;          ///< Of the jitter buffer.
    double skewMs = 0;           ///< Positive if the sound is late; 0 until a picture is known.

    unsigned long marginMs = 0; ///< The last one that the engine has confirmed.
    double pictureDelayMs = 0;  ///< What `LipSync::pictureDelayMs` returns.
    bool isSteered = false;     ///< There are usable readings, and pictures for them.

    // Since the construction.
    unsigned long readings = 0;      ///< The usable ones.
    unsigned long changes = 0;       ///< Of the margin, the pictures' delay, or both at once.
    unsigned long marginChanges = 0; ///< Those that changed the margin.
};

/// How a `LipSync` works.
struct LipSyncOptions {
    /// The path of the engine's socket.
    std::string socket = lipsyncapi::Service::defaultLipsyncSocketName;

    /// How long an exchange with the engine may take, and how long `stop` may take, at least 1 ms.
    /// A caller whose engine is quick can choose less.
    std::chrono::milliseconds deadline{1000};

    /// The time from one reading to the next; at least 1 ms. The steering uses no readings that are
    /// closer together than 50 ms, and starts anew after a gap of five seconds.
    std::chrono::milliseconds interval{100};

    /// Whether `stop` sets the margin back to 0. Otherwise the next call may start with it, even
    /// one without pictures.
    bool resetsMargin = true;

    /// Called with the status after each attempt to take a reading; `readings` tells whether it
    /// gave one. Not called when memory has run out. May be empty. It runs in the thread of the
    /// `LipSync`, which waits for it, so it should be quick. It must not throw. It may call all
    /// functions of the `LipSync`, and even destroy it. It may run before the constructor has
    /// returned, but not after `stop` has.
    std::function<void(const LipSyncStatus&)> onReading;
};

} // namespace velta::zub::avsync
