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
#include "tools/azubsim/engine/AudioEngine.h"
#include "tools/azubsim/engine/FaultPlan.h"
#include "tools/azubsim/net/Server.h"
#include "tools/azubsim/net/Tap.h"
#include "tools/azubsim/report/Reports.h"

namespace azubsim {

/// What a mode that serves clients consists of, put together as the options say.
class Program {
public:
    /// Uses nothing but the mode and the socket's path.
    explicit Program(const Options& options);

    /// The commands of the mode. Those that `options` has are not carried out yet.
    const Commands& commands() const { return _commands; }

    /// Serves until a signal, "quit" or the end of a terminal's input. Throws a `tools::Error` if
    /// it cannot start, or if something that was to be written is lost.
    void run();

private:
    void addCommands();
    std::string status();
    void prepare();
    void listen();
    std::shared_ptr<Connection> serve(Socket& socket, int client);
    void answer(Exchange& exchange);
    void answerCommand(Exchange& exchange) const;
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
    std::optional<Replay> _replay;
    std::optional<Tap> _tap;
    Server _server;
    Server _control;
    asio::posix::stream_descriptor _signals;
    asio::steady_timer _downTimer;
    Commands _commands;
    std::optional<Scenario> _scenario;
    bool _isFull = false; ///< There were too many clients.
    std::string _failure; ///< Why the program has to end.
};

} // namespace azubsim
