#include "tools/azubsim/Program.h"

#include <sys/signalfd.h>

#include <csignal>
#include <utility>

#include "tools/azubsim/control/ControlSession.h"
#include "tools/azubsim/control/Input.h"
#include "tools/azubsim/net/EngineSession.h"
#include "tools/common/Error.h"
#include "tools/common/Printable.h"

namespace azubsim {

namespace {

using asio::posix::stream_descriptor;
using tools::Error;
using tools::printable;
using Mode = Options::Mode;

// What the commands of every mode change.
struct General {
    std::function<void(bool)> setQuiet;
    std::function<void(std::chrono::milliseconds)> goDown;
    std::function<void()> quit;
};

void addCommandsOf(Mode mode, Commands& commands, AudioEngine& engine, FaultPlan& faults,
                   const General& general) {
    if (mode == Mode::Engine) {
        commands.addEngine(engine);
    }
    if (mode != Mode::Replay) {
        commands.addFaults(faults);
    }
    commands.add(Command::number(
        "down", "SECONDS", "go away: close everything, then come back with margin 0",
        {0, 3600, " s", false}, [general](auto seconds) {
            const std::chrono::duration<double> time(*seconds);
            general.goDown(std::chrono::duration_cast<std::chrono::milliseconds>(time));
        }));
    commands.add(Command::onOff("quiet", "print no line per exchange", general.setQuiet));
    commands.add(Command::plain("quit", "exit", [general] {
        general.quit();
        return std::string("quit");
    }));
}

// Returns a descriptor that can be read when a signal asks the program to end. Unlike a handler, it
// cannot be held back by ThreadSanitizer.
int openEndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        sigaddset(&signals, signal);
    }
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

} // namespace

std::string commandTable(Mode mode) {
    Commands commands;
    AudioEngine engine;
    FaultPlan faults;
    addCommandsOf(mode, commands, engine, faults, {});
    return commands.table();
}

Program::Program(const Options& options)
    : _options(options),
      _reports(_screen),
      _simulator(_engine, _faults),
      _server(_io, options.socket,
              [this](Connection::Socket socket, int client) {
                  return newSession(std::move(socket), client);
              }),
      _control(_io, controlPath(options.socket),
               [this](Connection::Socket socket, int) {
                   return std::make_shared<ControlSession>(
                       std::move(socket),
                       [this](const std::string& line) { return _commands.parse(line)(); });
               }),
      _signals(_io),
      _downTimer(_io) {
    _screen.lost = [this](const std::string& reason) {
        fail("cannot write to standard output: " + reason);
    };
    _reports.isQuiet = options.isQuiet;
    for (const std::string& fault : options.faults) {
        _faults.add(Fault(fault));
    }
    for (const std::string& target : options.targets) {
        _faults.aim(target);
    }
    _faults.setEvery(options.every);
    _faults.setSeed(options.seed);
    _engine.setInCall(!options.noCall);
    if (!options.networkFile.empty()) {
        _engine.follow(Network(options.networkFile));
    }
    if (options.mode == Mode::Tap) {
        _tap.emplace(_io, options.engine, _faults, _reports);
    }
    if (options.mode == Mode::Replay) {
        _replay.emplace(options.recording, options.rules);
    }
    addCommands();
    if (!options.scenarioFile.empty()) {
        _scenario.emplace(_io, options.scenarioFile, _commands, _screen);
    }
}

void Program::addCommands() {
    addCommandsOf(
        _options.mode, _commands, _engine, _faults,
        {[this](bool isQuiet) { _reports.isQuiet = isQuiet; },
         [this](std::chrono::milliseconds time) { goDown(time); }, [this] { _io.stop(); }});
    _commands.addStatus([this] { return status(); });
}

std::string Program::status() {
    std::string text = _scenario ? _scenario->status() : "";
    const auto addPath = [&](const char* what, const std::string& path) {
        text += path.empty() ? "" : std::string(what) + ' ' + printable(path) + '\n';
    };
    addPath("socket", _options.socket);
    addPath("engine", _options.engine);
    addPath("network", _options.networkFile);
    addPath("recording", _options.recording);
    addPath("record", _options.recordFile);
    return text + _reports.tally.text() + '\n' + std::to_string(_server.clients()) +
           " clients connected\nquiet " + (_reports.isQuiet ? "on\n" : "off\n");
}

std::shared_ptr<Session> Program::newSession(Connection::Socket socket, int client) {
    ++_reports.tally.clients;
    if (_tap) {
        return _tap->newSession(std::move(socket), client);
    }
    _engine.startNetwork(AudioEngine::Clock::now());
    return std::make_shared<EngineSession>(std::move(socket), client,
                                           [this](Exchange& exchange) { answer(exchange); });
}

void Program::answer(Exchange& exchange) {
    if (_replay) {
        exchange.reply = _replay->next(exchange.request);
    } else {
        _simulator.answer(exchange);
    }
    _reports.add(exchange);
    const std::string note = _replay ? _replay->takeNote() : "";
    if (!note.empty()) {
        _screen.say("azubsim: " + note);
    }
}

void Program::run() {
    _signals.assign(openEndSignals());
    _signals.async_wait(stream_descriptor::wait_read,
                        [this](const asio::error_code&) { _io.stop(); });
    listen();
    Input input(
        _io, [this](const std::string& line) { execute(line); }, [this] { _io.stop(); });
    input.start();
    if (_scenario) {
        _scenario->start();
    }
    _io.run();
    _server.close();
    _control.close();
    _screen.say("azubsim: " + _reports.tally.text());
    _reports.finish();
    if (!_failure.empty()) {
        throw Error(_failure);
    }
}

// The recording is written only when the socket is there.
void Program::listen() {
    _server.listen();
    if (_tap && _server.file().isAt(_options.engine)) {
        throw Error("the engine's path leads to this tap's own socket", tools::exitUsage);
    }
    _control.listen(true);
    if (!_options.recordFile.empty()) {
        _reports.recorder.emplace(_options.recordFile, _options.overwrites);
    }
    const std::string note = _replay ? _replay->takeNote() : "";
    if (!note.empty()) {
        _screen.warn(note);
    }
    _screen.say("azubsim: listening at " + _options.socket);
}

void Program::execute(const std::string& line) {
    if (line.find_first_not_of(" \t\r") == std::string::npos) {
        return;
    }
    try {
        _screen.sayLines(_commands.parse(line)());
    } catch (const Error& e) {
        _screen.say(std::string(e.what()) + " (try help)");
    }
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
    try {
        _server.listen();
        _screen.say("azubsim: listening at " + _options.socket + " again");
    } catch (const Error& e) {
        fail(e.what());
    }
}

void Program::fail(const std::string& reason) {
    _failure = reason;
    _io.stop();
}

} // namespace azubsim
