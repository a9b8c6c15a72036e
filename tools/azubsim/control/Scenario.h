#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <string>
#include <vector>

#include "tools/azubsim/control/Commands.h"
#include "tools/azubsim/report/Screen.h"
#include "tools/common/Error.h"
#include "tools/common/Number.h"
#include "tools/common/Text.h"

namespace azubsim {

/// Commands that are carried out at given times: lines of "SECONDS COMMAND". Blank lines and lines
/// that start with "#" are ignored.
class Scenario {
public:
    /// Checks the whole file. Throws a `tools::Error`, for example "FILE:LINE: reason". `commands`
    /// and `screen` must outlive this object.
    Scenario(asio::io_context& io, const std::string& file, const Commands& commands,
             Screen& screen)
        : _name(tools::printable(file.substr(file.rfind('/') + 1))), _screen(screen), _timer(io) {
        tools::readLines(file, [&](const std::string& line) { add(tools::Words(line), commands); });
    }

    /// Counts the seconds from now. Prints each command with its answer, and the end.
    void start() {
        _start = asio::steady_timer::clock_type::now();
        waitForStep();
    }

    /// A line of "status", for example "scenario drift.scenario: 3 of 7 steps done".
    std::string status() const {
        return "scenario " + _name + ": " + std::to_string(_done) + " of " +
               std::to_string(_steps.size()) + " steps done\n";
    }

private:
    struct Step {
        double seconds;
        Commands::Action action;
    };

    void add(const tools::Words& line, const Commands& commands) {
        if (line.first.empty() || line.first[0] == '#') {
            return;
        }
        const double earliest = _steps.empty() ? 0 : _steps.back().seconds;
        constexpr double latest = 86400;
        const double seconds = tools::parseNumber(line.first).value_or(-1);
        tools::require(seconds >= earliest && seconds <= latest,
                       "'" + line.first + "' is not a time from " + tools::formatNumber(earliest) +
                           " to " + tools::formatNumber(latest) + " seconds");
        tools::require(!line.rest.empty(), "no command after the time");
        _steps.push_back({seconds, commands.parse(line.rest)});
    }

    void waitForStep() {
        if (_done == _steps.size()) {
            _screen.say("scenario " + _name + ": end");
            return;
        }
        const std::chrono::duration<double> time(_steps[_done].seconds);
        _timer.expires_at(_start + std::chrono::duration_cast<asio::steady_timer::duration>(time));
        _timer.async_wait([this](const asio::error_code& cancelled) {
            if (!cancelled) {
                const Step& step = _steps[_done++];
                _screen.say("scenario " + tools::formatNumber(step.seconds) +
                            " s: " + step.action());
                waitForStep();
            }
        });
    }

    const std::string _name; ///< Of the file, without its folder, and printable.
    Screen& _screen;
    std::vector<Step> _steps;
    std::size_t _done = 0;
    asio::steady_timer _timer;
    asio::steady_timer::time_point _start;
};

} // namespace azubsim
