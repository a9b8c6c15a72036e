#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <string>
#include <vector>

#include "tools/azubsim/control/Commands.h"
#include "tools/common/Text.h"

namespace azubsim {

class Screen;

/// Commands that are carried out at given times: lines of "SECONDS COMMAND". Blank lines and lines
/// that start with "#" are ignored.
class Scenario {
public:
    /// Checks the whole file. Throws a `tools::Error`, for example "FILE:LINE: reason". `commands`
    /// and `screen` must outlive this object.
    Scenario(asio::io_context& io, const std::string& file, const Commands& commands,
             Screen& screen);

    /// Counts the seconds from now. Prints each command with its confirmation, and the end.
    void start();

    /// A line of "status", for example "scenario drift.scenario: 3 of 7 steps done".
    std::string status() const;

private:
    struct Step {
        double seconds;
        Commands::Action action;
    };

    void add(const tools::Words& line, const Commands& commands);
    void waitForStep();

    std::string _name; ///< Of the file, without its folder, and printable.
    Screen& _screen;
    std::vector<Step> _steps;
    std::size_t _done = 0;
    asio::steady_timer _timer;
    asio::steady_timer::time_point _start;
};

} // namespace azubsim
