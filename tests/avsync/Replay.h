#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <functional>
#include <random>

#include "avsync/Controller.h"
#include "avsync/Window.h"

namespace tests {

namespace avsync = velta::zub::avsync;

// A latency without help, in ms, by the time in seconds.
using Latency = std::function<double(double)>;

inline Latency steady(double ms) {
    return [ms](double) { return ms; };
}

inline Latency step(double before, double after, double at) {
    return [=](double time) { return time < at ? before : after; };
}

// A call, its engine and its pipeline.
struct Call {
    Latency audio = steady(200);
    Latency pictures = steady(200);
    double seconds = 60;
    int intervalMs = 100;
    double audioNoiseMs = 0; // Standard deviation.
    double pictureNoiseMs = 0;
    unsigned seed = 1;
    double engineMsPerSecond = 1e6; // How fast the engine applies a margin.
    double refusedUntil = 0;        // The engine refuses margins, in seconds.
    double pipelineSeconds = 0;     // Until pictures are held back as asked.
    double earliestMs = 0;          // How far from what was asked pictures are held back.
    double latestMs = 0;
};

struct Outcome {
    std::size_t changes = 0; // Of what was asked.
    double inside = 0;       // Share of the readings.
    double lastOutside = -1; // In seconds, without the noise.
    avsync::Correction asked;
};

// The same numbers with each standard library.
class Random {
public:
    explicit Random(unsigned seed) : _engine(seed) {}

    double between(double least, double most) {
        return least + (most - least) * static_cast<double>(_engine()) / 4294967295.0;
    }
    double normal() {
        double sum = 0;
        for (int i = 0; i < 12; ++i) {
            sum += between(-0.5, 0.5);
        }
        return sum;
    }

private:
    std::mt19937 _engine;
};

inline avsync::Controller::Time timeAt(double seconds) {
    return avsync::Controller::Time(
        std::chrono::milliseconds(1000000 + std::lround(seconds * 1000)));
}

// A call as it goes on under the corrections of a controller, without a clock.
class Replay {
public:
    explicit Replay(const Call& call) : _call(call), _random(call.seed) {}

    Outcome run() {
        const double interval = _call.intervalMs / 1000.0;
        const int readings = static_cast<int>(_call.seconds / interval);
        int inside = 0;
        for (int i = 0; i < readings; ++i) {
            inside += take(i * interval, interval) ? 1 : 0;
        }
        _outcome.inside = static_cast<double>(inside) / readings;
        return _outcome;
    }

private:
    bool take(double time, double interval) {
        if (time >= _call.refusedUntil) {
            _inForce.marginMs = _outcome.asked.marginMs;
        }
        const double most = _call.engineMsPerSecond * interval;
        _appliedMs += std::clamp(static_cast<double>(_inForce.marginMs) - _appliedMs, -most, most);
        if (time >= _heldBackFrom) {
            _heldBackMs = _outcome.asked.pictureDelayMs;
        }
        _inForce.pictureDelayMs = _heldBackMs;
        if (_heldBackMs > 0) {
            _inForce.pictureDelayMs += _random.between(_call.earliestMs, _call.latestMs);
        }
        avsync::Reading reading;
        reading.audioLatencyMs = _call.audio(time) + _appliedMs;
        reading.pictureLatencyMs = _call.pictures(time) + _inForce.pictureDelayMs;
        if (!isInside(reading)) {
            _outcome.lastOutside = time;
        }
        reading.audioLatencyMs += _call.audioNoiseMs * _random.normal();
        reading.pictureLatencyMs += _call.pictureNoiseMs * _random.normal();
        ask(time, _controller.update(timeAt(time), reading, _inForce));
        return isInside(reading);
    }

    static bool isInside(const avsync::Reading& reading) {
        return avsync::allowedSkew.contains(reading.audioLatencyMs - reading.pictureLatencyMs);
    }

    void ask(double time, const avsync::Correction& correction) {
        avsync::Correction& asked = _outcome.asked;
        if (correction.marginMs == asked.marginMs &&
            correction.pictureDelayMs == asked.pictureDelayMs) {
            return;
        }
        ++_outcome.changes;
        asked = correction;
        _heldBackFrom = time + _call.pipelineSeconds;
    }

    Call _call;
    Random _random;
    avsync::Controller _controller{20, 100};
    Outcome _outcome;
    avsync::Correction _inForce;
    double _appliedMs = 0;
    double _heldBackMs = 0;
    double _heldBackFrom = 0;
};

inline Outcome replay(const Call& call) {
    return Replay(call).run();
}

} // namespace tests
