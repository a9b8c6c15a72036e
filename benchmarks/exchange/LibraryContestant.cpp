#include "benchmarks/exchange/LibraryContestant.h"

#include <stdexcept>

#include "benchmarks/exchange/Answers.h"

namespace exchange {

LibraryContestant::LibraryContestant(LogOutput::Kind log) : _kind(log), _server("text"), _log(log) {
    _log.install();
    const auto result = _service.connect(_server.path());
    _log.restore();
    if (result.isFailure()) {
        throw std::runtime_error("library: " + result.format());
    }
}

// The service writes a line when it goes, before the output does.
LibraryContestant::~LibraryContestant() {
    _log.install();
}

void LibraryContestant::beginTurn() {
    _log.install();
    _first = _next;
}

void LibraryContestant::endTurn() {
    _log.restore();
    if (_kind == LogOutput::Kind::File && _log.lines() != 2 * (_next - _first)) {
        throw std::runtime_error("library: lines are missing in the log");
    }
}

void LibraryContestant::exchange() {
    velta::zub::common::LipSyncNtpTimestamps audio;
    const auto result = _service.getAudioTimestamps(audio);
    if (result.isFailure()) {
        throw std::runtime_error("library: " + result.format());
    }
    const Values values{audio.audioCaptureTimestamp, audio.audioRenderingTimestamp,
                        audio.audioReceivingTimestamp, audio.jbmCurrentDepth};
    if (values != valuesOf(_next++)) {
        throw std::runtime_error("library: wrong values");
    }
}

} // namespace exchange
