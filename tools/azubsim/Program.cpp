#include "tools/azubsim/Program.h"

#include <utility>

#include "tools/azubsim/Console.h"
#include "tools/azubsim/EngineSession.h"

namespace azubsim {

Program::Program(asio::io_context& io, const Options& options)
    : _io(io),
      _options(options),
      _reports(_screen),
      _simulator(_engine, _faults, _reports),
      _tap(io, options.engine, _faults, _reports),
      _server(io, options.socket,
              [this](Connection::Socket socket, int client) {
                  return newSession(std::move(socket), client);
              }),
      _downTimer(io),
      _commands(controls()) {
    for (const Fault& fault : options.faults) {
        _faults.add(fault);
    }
    _faults.setEvery(options.every);
    _faults.setSeed(options.seed);
    _engine.setInCall(!options.noCall);
    _reports.printsLines = source() == Source::Tap;
    _reports.isVerbose = options.isVerbose;
    if (!options.scenarioFile.empty()) {
        _commands.scenarioStatus = [this] { return _scenario.status(); };
    }
}

Source Program::source() const {
    if (!_options.engine.empty()) {
        return Source::Tap;
    }
    return _options.replayFile.empty() ? Source::Simulation : Source::Recording;
}

Controls Program::controls() {
    return {_engine,
            _faults,
            _reports.isVerbose,
            source(),
            [this] { return _server.clients(); },
            [this](std::chrono::milliseconds time) { goDown(time); },
            [this] { stop(); }};
}

std::shared_ptr<Session> Program::newSession(Connection::Socket socket, int client) {
    if (source() == Source::Tap) {
        return _tap.newSession(std::move(socket), client);
    }
    _engine.startNetwork(AudioEngine::Clock::now());
    return std::make_shared<EngineSession>(std::move(socket), client, _simulator);
}

bool Program::run() {
    if (!open()) {
        return false;
    }
    _screen.say("azubsim: listening at " + _options.socket);
    Console console(_io, _commands, _screen);
    console.start();
    if (!_options.scenarioFile.empty()) {
        _scenario.start(_io, _screen);
    }
    _io.run();
    _server.close();
    return !_hasFailed;
}

// Files are checked before the socket appears, and written only when it is there.
bool Program::open() {
    std::string error;
    Replay replay;
    if (!_options.replayFile.empty()) {
        if (!replay.open(_options.replayFile, _options.isTimed, error)) {
            return fail("cannot replay " + _options.replayFile, error);
        }
        if (!replay.note().empty()) {
            _screen.warn(_options.replayFile + ": " + replay.note());
        }
        _simulator.replay(std::move(replay));
    }
    if (!_options.scenarioFile.empty() &&
        !_scenario.open(_options.scenarioFile, _commands, error)) {
        _screen.warn(error);
        return false;
    }
    if (!_options.networkFile.empty()) {
        Network network;
        if (!network.open(_options.networkFile, error)) {
            _screen.warn(error);
            return false;
        }
        _engine.follow(std::move(network));
    }
    if (source() == Source::Tap && !_tap.open(error)) {
        return fail("cannot connect to " + _options.engine, error);
    }
    if (!_server.listen(error)) {
        return fail("cannot listen at " + _options.socket, error);
    }
    return openOutput(_options.recordFile, "record to", _reports.recorder) &&
           openOutput(_options.traceFile, "trace to", _reports.trace);
}

template <typename Output>
bool Program::openOutput(const std::string& file, const char* purpose,
                         std::optional<Output>& output) {
    std::string error;
    return file.empty() || output.emplace().open(file, _options.overwrites, error) ||
           fail(std::string("cannot ") + purpose + ' ' + file, error);
}

bool Program::fail(const std::string& what, const std::string& why) {
    _screen.warn(what + ": " + why);
    return false;
}

void Program::goDown(std::chrono::milliseconds time) {
    _isAway = true;
    _server.close();
    _engine.resetMargin();
    _downTimer.expires_after(time);
    _downTimer.async_wait([this](const asio::error_code& cancelled) {
        // If a wait has ended, a later "down" does not cancel it any more.
        if (!cancelled && _isAway && _downTimer.expiry() <= asio::steady_timer::clock_type::now()) {
            comeBack();
        }
    });
}

void Program::comeBack() {
    _isAway = false;
    std::string error;
    if (_server.listen(error)) {
        _screen.say("azubsim: listening at " + _options.socket + " again");
    } else {
        _hasFailed = !fail("cannot listen at " + _options.socket + " again", error);
        stop();
    }
}

} // namespace azubsim
