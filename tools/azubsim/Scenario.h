#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/azubsim/Commands.h"

namespace azubsim {

class Screen;

/// Commands that are carried out at given times: lines of "SECONDS COMMAND". Blank lines and lines
/// that start with "#" are ignored.
class Scenario {
public:
    /// Checks the whole file. Returns false, with the reason in `error`, for example as "FILE:LINE:
    /// reason". `commands` must outlive this object.
    bool open(const std::string& file, const Commands& commands, std::string& error);

    /// Counts the seconds from now. Prints each command with its confirmation, and the end.
    void start(asio::io_context& io, Screen& screen);

    /// For example "scenario drift.scenario: 3 of 7 steps done".
    std::string status() const;

private:
    struct Step {
        double seconds;
        std::string text;
        Commands::Action action;
    };

    bool add(const std::string& line, const Commands& commands, std::string& error);
    void waitForStep(Screen& screen);

    std::string _name; ///< Of the file, without its folder.
    std::vector<Step> _steps;
    std::size_t _done = 0;
    std::optional<asio::steady_timer> _timer;
    asio::steady_timer::time_point _start;
};

} // namespace azubsim
