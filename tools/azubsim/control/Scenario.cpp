#include "tools/azubsim/control/Scenario.h"

#include "tools/azubsim/report/Screen.h"
#include "tools/common/Error.h"
#include "tools/common/Number.h"
#include "tools/common/Text.h"

namespace azubsim {

using tools::formatNumber;
using tools::require;

Scenario::Scenario(asio::io_context& io, const std::string& file, const Commands& commands,
                   Screen& screen)
    : _name(tools::printable(file.substr(file.rfind('/') + 1))), _screen(screen), _timer(io) {
    tools::readLines(file, [&](const std::string& line) { add(tools::Words(line), commands); });
}

void Scenario::add(const tools::Words& line, const Commands& commands) {
    if (line.first.empty() || line.first[0] == '#') {
        return;
    }
    const double earliest = _steps.empty() ? 0 : _steps.back().seconds;
    constexpr double latest = 86400;
    const double seconds = tools::parseNumber(line.first).value_or(-1);
    require(seconds >= earliest && seconds <= latest, "'" + line.first + "' is not a time from " +
                                                          formatNumber(earliest) + " to " +
                                                          formatNumber(latest) + " seconds");
    require(!line.rest.empty(), "no command after the time");
    _steps.push_back({seconds, commands.parse(line.rest)});
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
        if (!error) {
            const Step& step = _steps[_done++];
            _screen.say("scenario " + formatNumber(step.seconds) + " s: " + step.action());
            waitForStep();
        }
    });
}

std::string Scenario::status() const {
    return "scenario " + _name + ": " + std::to_string(_done) + " of " +
           std::to_string(_steps.size()) + " steps done\n";
}

} // namespace azubsim
