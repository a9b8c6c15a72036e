#pragma once

#include <chrono>
#include <string>

#include "avsync/Controller.h"
#include "lipsyncapi/Service.h"

namespace velta::zub::avsync::details {

/// Decides on corrections; while the engine refuses margins, on the pictures' delay alone.
class Steering {
public:
    using Time = Controller::Time;

    /// For a new connection or a new call.
    void restart() {
        if (!_usesMargins) {
            useMargins(true);
        }
        _controller.restart();
        _marginRetry = Time();
        _refusal.clear();
    }

    Correction update(Time now, const Reading& reading, const Correction& inForce) {
        if (!_usesMargins && maySetMargin(now)) {
            useMargins(true);
        }
        // A margin that cannot be changed counts as a part of the sound's latency.
        const unsigned long fixedMs = _usesMargins ? 0 : inForce.marginMs;
        Correction wanted =
            _controller.update(now, reading, {inForce.marginMs - fixedMs, inForce.pictureDelayMs});
        wanted.marginMs += fixedMs;
        return wanted;
    }

    bool maySetMargin(Time now) const { return now >= _marginRetry; }

    /// The engine has confirmed a margin.
    void acceptMargin() { _refusal.clear(); }

    /// The engine has refused a margin and said why.
    void refuseMargin(Time now, const std::string& reason) {
        _refusal = reason;
        _marginRetry = now + marginPause;
        useMargins(false);
    }

    /// Why the engine refused the last margin; empty if it did not.
    const std::string& refusal() const { return _refusal; }

private:
    static constexpr std::chrono::seconds marginPause{5};

    // A new controller begins with what is in force, not with what it last asked for.
    void useMargins(bool areUsed) {
        _usesMargins = areUsed;
        _controller = makeController(areUsed);
    }

    static Controller makeController(bool usesMargins) {
        using Service = lipsyncapi::Service;
        return {Service::capabilityGranularityMs,
                usesMargins ? Service::capabilityMaxAudioDelayMargin : 0u};
    }

    bool _usesMargins = true;
    Controller _controller = makeController(true);
    Time _marginRetry;
    std::string _refusal;
};

} // namespace velta::zub::avsync::details
