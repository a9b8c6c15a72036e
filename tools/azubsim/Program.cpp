#include "tools/azubsim/Program.h"

#include <sys/signalfd.h>

#include <csignal>
#include <utility>

#include "tools/azubsim/control/Input.h"
#include "tools/azubsim/control/Tell.h"
#include "tools/common/Error.h"
#include "tools/common/Text.h"

namespace azubsim {

namespace {

using tools::Error;
using Mode = Options::Mode;

// A tap has two descriptors for each of them, and the usual limit is 1024.
constexpr std::size_t maxClients = 400;

} // namespace

Program::Program(const Options& options)
    : _options(options),
      _reports(_screen),
      _server(_io, options.socket,
              [this](Socket& socket, int client) { return serve(socket, client); }),
      _control(_io, controlPath(options.socket),
               [this](Socket& socket, int client) {
                   return answerRequests(std::move(socket), client,
                                         [this](Exchange& exchange) { answerCommand(exchange); });
               }),
      _signals(_io),
      _downTimer(_io) {
    addCommands();
}

void Program::addCommands() {
    if (_options.mode == Mode::Engine) {
        addEngineCommands(_commands, _engine);
    }
    if (_options.mode != Mode::Replay) {
        addFaultCommands(_commands, _faults);
    }
    _commands.addNumber(
        {"down", "SECONDS", "go away: close everything, then come back with margin 0"},
        {0, 3600, false}, [this](auto seconds) {
            const std::chrono::duration<double> time(*seconds);
            goDown(std::chrono::duration_cast<std::chrono::milliseconds>(time));
        });
    _commands.addOnOff({"quiet", "on|off", "print no line per exchange", "off"},
                       [this](bool isOn) { _reports.isQuiet = isOn; });
    _commands.addPlain({"quit", "", "exit"}, [this] {
        _io.stop();
        return "quit";
    });
    _commands.addStatus([this] { return status(); });
}

std::string Program::status() {
    std::string text = _scenario ? _scenario->status() : "";
    const auto addPath = [&](const char* name, const std::string& path) {
        text += path.empty() ? "" : std::string(name) + ' ' + tools::printable(path) + '\n';
    };
    addPath("socket", _options.socket);
    addPath("engine", _options.engine);
    addPath("network", _engine.isFollowing() ? _options.networkFile : "");
    addPath("recording", _options.recording);
    addPath("record", _options.recordFile);
    return text + _reports.tally(_server.accepted()) + '\n' + std::to_string(_server.connected()) +
           " clients connected\n";
}

void Program::run() {
    prepare();
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        sigaddset(&signals, signal);
    }
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    // Unlike a handler, this cannot be held back by ThreadSanitizer.
    _signals.assign(signalfd(-1, &signals, SFD_CLOEXEC));
    _signals.async_wait(asio::posix::stream_descriptor::wait_read,
                        [this](const asio::error_code&) { _io.stop(); });
    listen();
    Input input(_io, [this](const std::string& line) { execute(line); });
    input.start();
    if (_scenario) {
        _scenario->start();
    }
    _io.run();
    _server.close();
    _control.close();
    _screen.say("azubsim: " + _reports.tally(_server.accepted()));
    tools::require(_failure.empty(), _failure);
    tools::require(_reports.failure().empty(), _reports.failure());
}

// Reads the files and carries out the commands that the options name.
void Program::prepare() {
    _screen.lost = [this](const std::string& reason) {
        fail("cannot write to standard output: " + reason);
    };
    try {
        for (const std::string& command : _options.commands) {
            _commands.parse(command)();
        }
    } catch (const Error& e) {
        throw Error(e.what(), tools::exitUsage);
    }
    if (!_options.networkFile.empty()) {
        _engine.follow(Network(_options.networkFile));
    }
    if (_options.mode == Mode::Tap) {
        _tap.emplace(_io, _options.engine, _faults, _reports);
    }
    if (_options.mode == Mode::Replay) {
        _replay.emplace(_options.recording, _options.rules,
                        [this](const std::string& text) { _screen.warn(text); });
    }
    if (!_options.scenarioFile.empty()) {
        _scenario.emplace(_io, _options.scenarioFile, _commands, _screen);
    }
}

// The recording is written only when the socket is there.
void Program::listen() {
    _server.listen();
    if (_tap && _server.isAt(_options.engine)) {
        throw Error("the engine's path leads to this tap's own socket", tools::exitUsage);
    }
    _control.listen(true);
    if (!_options.recordFile.empty()) {
        _reports.recorder.emplace(_options.recordFile);
    }
    _screen.say("azubsim: listening at " + tools::printable(_options.socket));
}

std::shared_ptr<Connection> Program::serve(Socket& socket, int client) {
    // Taps in a ring would pass each client round until there are no descriptors.
    if (_server.connected() >= maxClients) {
        if (!std::exchange(_isFull, true)) {
            _screen.warn("there are " + std::to_string(maxClients) +
                         " clients, so further ones are disconnected" +
                         (_tap ? "; does the engine's path lead back to this tap?" : ""));
        }
        socket.close();
        return nullptr;
    }
    if (_tap) {
        return _tap->serve(socket, client);
    }
    _engine.startNetwork(AudioEngine::Clock::now());
    return answerRequests(std::move(socket), client,
                          [this](Exchange& exchange) { answer(exchange); });
}

void Program::answer(Exchange& exchange) {
    exchange.reply = {{}, true};
    if (_replay) {
        exchange.reply = _replay->next(exchange.request);
    } else if (const auto answer =
                   _engine.answer(parseRequest(exchange.request), AudioEngine::Clock::now())) {
        _faults.answer(exchange, print(*answer), _faults.next(exchange.client, answer->command));
    }
    _reports.add(exchange);
}

void Program::answerCommand(Exchange& exchange) const {
    std::string answer;
    try {
        answer = accepted + _commands.parse(exchange.request)();
    } catch (const Error& e) {
        answer = refused + std::string(e.what());
    }
    exchange.reply = {{{noWait, answer + (answer.back() == '\n' ? "" : "\n")}}, true};
}

void Program::execute(const std::string& line) {
    if (line.find_first_not_of(" \t\r\n") == std::string::npos) {
        return;
    }
    try {
        _screen.say(_commands.parse(line)());
    } catch (const Error& e) {
        _screen.say(std::string(e.what()) + " (try help)");
    }
}

void Program::goDown(std::chrono::milliseconds time) {
    _server.close();
    _engine.resetMargin();
    _downTimer.expires_after(time);
    _downTimer.async_wait([this](const asio::error_code& cancelled) {
        if (!cancelled) {
            comeBack();
        }
    });
}

void Program::comeBack() {
    // If a wait has ended, a later "down" does not cancel it any more.
    if (_server.isListening() || _downTimer.expiry() > asio::steady_timer::clock_type::now()) {
        return;
    }
    _server.listen();
    _screen.say("azubsim: listening at " + tools::printable(_options.socket) + " again");
}

void Program::fail(const std::string& reason) {
    _failure = reason;
    _io.stop();
}

} // namespace azubsim
