#include "tools/azubsim/control/Scenario.h"

#include "tools/azubsim/report/Screen.h"
#include "tools/common/Error.h"
#include "tools/common/Lines.h"
#include "tools/common/Number.h"
#include "tools/common/Printable.h"

namespace azubsim {

namespace {

using tools::Error;
using tools::formatNumber;

constexpr double longestSeconds = 86400;

} // namespace

Scenario::Scenario(asio::io_context& io, const std::string& file, const Commands& commands,
                   Screen& screen)
    : _name(tools::printable(file.substr(file.rfind('/') + 1))), _screen(screen), _timer(io) {
    tools::readLines(file, [&](const std::string& line) { add(line, commands); });
}

void Scenario::add(const std::string& line, const Commands& commands) {
    const tools::Words words(line);
    if (words.first.empty() || words.first[0] == '#') {
        return;
    }
    const double seconds = tools::parseNumber(words.first).value_or(-1);
    if (seconds < 0 || seconds > longestSeconds) {
        throw Error("time '" + words.first + "' must be a number of seconds from 0 to " +
                    formatNumber(longestSeconds));
    }
    if (!_steps.empty() && seconds < _steps.back().seconds) {
        throw Error("time " + words.first + " is earlier than the time before it, " +
                    formatNumber(_steps.back().seconds));
    }
    if (words.rest.empty()) {
        throw Error("no command after the time");
    }
    _steps.push_back({seconds, words.rest, commands.parse(words.rest)});
}

void Scenario::start() {
    _start = asio::steady_timer::clock_type::now();
    waitForStep();
}

void Scenario::waitForStep() {
    if (_done == _steps.size()) {
        _screen.say("scenario " + _name + ": end");
        return;
    }
    const std::chrono::duration<double> time(_steps[_done].seconds);
    _timer.expires_at(_start + std::chrono::duration_cast<asio::steady_timer::duration>(time));
    _timer.async_wait([this](const asio::error_code& error) {
        if (error) {
            return;
        }
        const Step& step = _steps[_done++];
        _screen.sayLines("scenario " + formatNumber(step.seconds) +
                         " s: " + tools::printable(step.text) + " -> " + step.action());
        waitForStep();
    });
}

std::string Scenario::status() const {
    return "scenario " + _name + ": " + std::to_string(_done) + " of " +
           std::to_string(_steps.size()) + " steps done\n";
}

} // namespace azubsim
