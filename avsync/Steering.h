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
        useMargins(true);
        _marginRetry = Time();
        _refusal.clear();
    }

    Correction update(Time now, const Reading& reading, const Correction& inForce) {
        if (!_usesMargins && maySetMargin(now)) {
            useMargins(true);
        }
        if (_usesMargins) {
            return _controller.update(now, reading, inForce);
        }
        // The margin counts as a part of the sound's latency.
        return {
            inForce.marginMs,
            _pictureController.update(now, reading, {0, inForce.pictureDelayMs}).pictureDelayMs};
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

    void useMargins(bool areUsed) {
        _usesMargins = areUsed;
        _controller.restart();
        _pictureController.restart();
    }

    Controller _controller{lipsyncapi::Service::capabilityGranularityMs,
                           lipsyncapi::Service::capabilityMaxAudioDelayMargin};
    Controller _pictureController{lipsyncapi::Service::capabilityGranularityMs, 0};
    bool _usesMargins = true;
    Time _marginRetry;
    std::string _refusal;
};

} // namespace velta::zub::avsync::details
