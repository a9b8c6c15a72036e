#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <optional>
#include <string>

#include "tools/azubsim/AudioEngine.h"
#include "tools/azubsim/Commands.h"
#include "tools/azubsim/FaultPlan.h"
#include "tools/azubsim/Options.h"
#include "tools/azubsim/Reports.h"
#include "tools/azubsim/Scenario.h"
#include "tools/azubsim/Screen.h"
#include "tools/azubsim/Server.h"
#include "tools/azubsim/Simulator.h"
#include "tools/azubsim/Tap.h"

namespace azubsim {

/// The parts of the simulator, put together as the options say.
class Program {
public:
    Program(asio::io_context& io, const Options& options);

    /// Runs until `stop`. Returns false, after printing the reason, if it cannot.
    bool run();
    void stop() { _io.stop(); }

private:
    Source source() const;
    bool open();
    template <typename Output>
    bool openOutput(const std::string& file, const char* purpose, std::optional<Output>& output);
    bool fail(const std::string& what, const std::string& why);
    std::shared_ptr<Session> newSession(Connection::Socket socket, int client);
    Controls controls();
    void goDown(std::chrono::milliseconds time);
    void comeBack();

    asio::io_context& _io;
    const Options& _options;
    Screen _screen;
    AudioEngine _engine;
    FaultPlan _faults;
    Reports _reports;
    Simulator _simulator;
    Tap _tap;
    Server _server;
    asio::steady_timer _downTimer;
    Commands _commands;
    Scenario _scenario;
    bool _isAway = false; ///< After "down", until it listens again.
    bool _hasFailed = false;
};

} // namespace azubsim
