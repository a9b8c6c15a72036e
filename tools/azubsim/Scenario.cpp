#include "tools/azubsim/Scenario.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "tools/azubsim/Decimal.h"
#include "tools/azubsim/Screen.h"
#include "tools/azubsim/Words.h"

namespace azubsim {

namespace {

constexpr double longestSeconds = 86400;

} // namespace

bool Scenario::open(const std::string& file, const Commands& commands, std::string& error) {
    _name = file.substr(file.rfind('/') + 1);
    errno = 0;
    std::ifstream lines(file);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (!add(line, commands, error)) {
            error.insert(0, file + ':' + std::to_string(number) + ": ");
            return false;
        }
    }
    // A folder can be opened, but not read.
    if (!lines.is_open() || lines.bad()) {
        error = file + ": " + std::strerror(errno);
        return false;
    }
    return true;
}

bool Scenario::add(const std::string& line, const Commands& commands, std::string& error) {
    std::string text = line;
    std::replace(text.begin(), text.end(), '\t', ' ');
    const Words words(text);
    if (words.first.empty() || words.first[0] == '#') {
        return true;
    }
    Step step{0, words.rest, nullptr};
    if (!parseDecimal(words.first, step.seconds) || step.seconds < 0 ||
        step.seconds > longestSeconds) {
        error = "time '" + words.first + "' must be a number of seconds from 0 to " +
                formatDecimal(longestSeconds);
        return false;
    }
    if (!_steps.empty() && step.seconds < _steps.back().seconds) {
        error = "time " + words.first + " is earlier than the time before it, " +
                formatDecimal(_steps.back().seconds);
        return false;
    }
    if (words.rest.empty()) {
        error = "no command after the time";
        return false;
    }
    if (!commands.parse(words.rest, step.action, error)) {
        return false;
    }
    _steps.push_back(step);
    return true;
}

void Scenario::start(asio::io_context& io, Screen& screen) {
    _timer.emplace(io);
    _start = asio::steady_timer::clock_type::now();
    waitForStep(screen);
}

void Scenario::waitForStep(Screen& screen) {
    if (_done == _steps.size()) {
        screen.say("scenario " + _name + ": end");
        return;
    }
    const std::chrono::duration<double> time(_steps[_done].seconds);
    _timer->expires_at(_start + std::chrono::duration_cast<asio::steady_timer::duration>(time));
    _timer->async_wait([this, &screen](const asio::error_code& error) {
        if (error) {
            return;
        }
        const Step& step = _steps[_done++];
        screen.say("scenario " + formatDecimal(step.seconds) + " s: " + step.text + " -> " +
                   step.action());
        waitForStep(screen);
    });
}

std::string Scenario::status() const {
    return "scenario " + _name + ": " + std::to_string(_done) + " of " +
           std::to_string(_steps.size()) + " steps done";
}

} // namespace azubsim
