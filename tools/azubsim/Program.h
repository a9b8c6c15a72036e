#pragma once

#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "tools/azubsim/Options.h"
#include "tools/azubsim/control/Commands.h"
#include "tools/azubsim/control/Scenario.h"
#include "tools/azubsim/engine/Simulator.h"
#include "tools/azubsim/net/Server.h"
#include "tools/azubsim/net/Tap.h"
#include "tools/azubsim/report/Reports.h"

namespace azubsim {

/// What a mode that serves clients consists of, put together as the options say.
class Program {
public:
    /// Checks the files that are read. Throws a `tools::Error`.
    explicit Program(const Options& options);

    /// Serves until a signal, "quit" or the end of a terminal's input. Throws a `tools::Error` if
    /// it cannot start, or if something that was to be written is lost.
    void run();

private:
    void addCommands();
    std::string status();
    std::shared_ptr<Session> newSession(Connection::Socket socket, int client);
    void answer(Exchange& exchange);
    void listen();
    void execute(const std::string& line);
    void goDown(std::chrono::milliseconds time);
    void comeBack();
    void fail(const std::string& reason);

    const Options& _options;
    asio::io_context _io;
    Screen _screen;
    AudioEngine _engine;
    FaultPlan _faults;
    Reports _reports;
    Simulator _simulator;
    std::optional<Replay> _replay;
    std::optional<Tap> _tap;
    Server _server;
    Server _control;
    asio::posix::stream_descriptor _signals;
    asio::steady_timer _downTimer;
    Commands _commands;
    std::optional<Scenario> _scenario;
    bool _isAway = false; ///< After "down", until it listens again.
    std::string _failure; ///< Why the program has to end.
};

/// One line for each command of a mode, for its help.
std::string commandTable(Options::Mode mode);

} // namespace azubsim
