#include "tools/azubsim/Command.h"

#include <algorithm>

#include "tools/azubsim/AudioEngine.h"
#include "tools/azubsim/Decimal.h"
#include "tools/azubsim/FaultPlan.h"

namespace azubsim {

namespace {

using Kind = Command::Kind;
using Needs = Command::Needs;
using Value = Command::Value;
using Clock = AudioEngine::Clock;
using std::chrono::milliseconds;

// One day: more than a wrong clock needs, and far from the limits of a timestamp.
constexpr double largestOffsetMs = 86400000;

milliseconds toMs(double number) {
    return milliseconds(static_cast<milliseconds::rep>(number));
}

void setCall(const Controls& controls, const Value& value) {
    controls.engine.setInCall(value.isOn);
}

void setNetwork(const Controls& controls, const Value& value) {
    controls.engine.setNetwork(toMs(value.number));
}

void setJitter(const Controls& controls, const Value& value) {
    controls.engine.setJitter(value.isWord ? std::nullopt : std::optional(toMs(value.number)));
}

void setSlew(const Controls& controls, const Value& value) {
    controls.engine.setSlew(value.number, Clock::now());
}

void setOffset(const Controls& controls, const Value& value) {
    controls.engine.setOffsetMs(value.number, Clock::now());
}

void setDrift(const Controls& controls, const Value& value) {
    controls.engine.setDriftPpm(value.number, Clock::now());
}

void setFreeze(const Controls& controls, const Value& value) {
    value.isOn ? controls.engine.freeze(Clock::now()) : controls.engine.unfreeze();
}

void goDown(const Controls& controls, const Value& value) {
    controls.goDown(toMs(value.number * 1000));
}

void setFault(const Controls& controls, const Value& value) {
    controls.faults.clear();
    if (value.fault) {
        controls.faults.add(*value.fault);
    }
}

void setEvery(const Controls& controls, const Value& value) {
    controls.faults.setEvery(static_cast<unsigned int>(value.number));
}

void setSeed(const Controls& controls, const Value& value) {
    const auto seed = static_cast<std::uint32_t>(value.number);
    controls.faults.setSeed(value.isWord ? std::nullopt : std::optional(seed));
}

void setVerbose(const Controls& controls, const Value& value) {
    controls.isVerbose = value.isOn;
}

void quit(const Controls& controls, const Value&) {
    controls.quit();
}

} // namespace

const std::vector<Command>& Command::all() {
    static const std::vector<Command> commands{
        {"call", "on|off", "start or end the call; outside it, answer error 1003",
         Needs::Simulation, Kind::Switch, 0, 0, "", setCall},
        {"network", "MS", "set the one-way delay of the network; at first 60; ends --network",
         Needs::Simulation, Kind::WholeNumber, 0, 10000, " ms", setNetwork},
        {"jitter", "MS|auto", "set the depth of the jitter buffer, or let it vary; ends --network",
         Needs::Simulation, Kind::WholeNumber, 0, 10000, " ms", setJitter},
        {"slew", "MS_PER_S", "apply a new margin at this rate; 0, at once", Needs::Simulation,
         Kind::Number, 0, 10000, " ms/s", setSlew},
        {"offset", "MS", "set the far end's clock ahead; below 0, back", Needs::Simulation,
         Kind::WholeNumber, -largestOffsetMs, largestOffsetMs, " ms", setOffset},
        {"drift", "PPM", "make the far end's clock run fast; below 0, slow", Needs::Simulation,
         Kind::Number, -100000, 100000, " ppm", setDrift},
        {"freeze", "on|off", "repeat the same timestamps while the call goes on", Needs::Simulation,
         Kind::Switch, 0, 0, "", setFreeze},
        {"down", "SECONDS", "go away: close everything, then come back with margin 0",
         Needs::Nothing, Kind::Number, 0, 3600, " s", goDown},
        {"fault", "FAULT|none", "apply this fault instead of all previous ones, or none",
         Needs::Answers, Kind::Fault, 0, 0, "", setFault},
        {"every", "N", "apply a fault to one answer in N", Needs::Answers, Kind::WholeNumber, 1,
         1e9, "", setEvery},
        {"seed", "S|none", "choose faults at random with this seed, or in turn", Needs::Answers,
         Kind::WholeNumber, 0, UINT32_MAX, "", setSeed},
        {"verbose", "on|off", "print each message to standard error", Needs::Nothing, Kind::Switch,
         0, 0, "", setVerbose},
        {"status", "", "print these settings", Needs::Nothing, Kind::NoArgument, 0, 0, "", nullptr},
        {"help", "", "list the commands and the faults", Needs::Nothing, Kind::NoArgument, 0, 0, "",
         nullptr},
        {"quit", "", "exit", Needs::Nothing, Kind::NoArgument, 0, 0, "", quit},
    };
    return commands;
}

const Command* Command::find(const std::string& name) {
    const auto found = std::find_if(all().begin(), all().end(),
                                    [&](const Command& command) { return name == command.name; });
    return found == all().end() ? nullptr : &*found;
}

bool Command::parse(const std::string& text, Value& value, std::string& error) const {
    const std::string placeholder = argument;
    if (text.empty() != placeholder.empty()) {
        error = text.empty() ? "needs an argument: " + placeholder : "takes no argument";
        return false;
    }
    const std::size_t bar = placeholder.find('|');
    value.isWord = bar != std::string::npos && text == placeholder.substr(bar + 1);
    // There is no default, so the compiler warns about a kind that is forgotten here.
    switch (kind) {
        case Kind::NoArgument: break;
        case Kind::Switch:
            value.isOn = text == "on";
            error = "must be on or off";
            return value.isOn || value.isWord;
        case Kind::WholeNumber:
        case Kind::Number: return value.isWord || parseNumber(text, value.number, error);
        case Kind::Fault:
            return value.isWord || azubsim::Fault::parse(text, value.fault.emplace(), error);
    }
    return true;
}

bool Command::parseNumber(const std::string& text, double& number, std::string& error) const {
    const bool isWhole = kind == Kind::WholeNumber;
    const std::string placeholder = argument;
    const std::size_t bar = placeholder.find('|');
    error = placeholder.substr(0, bar) + " must be a " + (isWhole ? "whole number" : "number") +
            " from " + formatDecimal(smallest) + " to " + formatDecimal(largest);
    if (bar != std::string::npos) {
        error += " or " + placeholder.substr(bar + 1);
    }
    return parseDecimal(text, number) && number >= smallest && number <= largest &&
           (!isWhole || text.find('.') == std::string::npos);
}

std::string Command::confirm(const std::string& line, const Value& value) const {
    return value.isWord ? line : line + unit;
}

bool Command::suits(Source source, std::string& error) const {
    error = source == Source::Tap ? "only a simulated engine can do this, but a real engine answers"
                                  : "it has no effect, because a recording answers";
    return source == Source::Simulation || needs == Needs::Nothing ||
           (source == Source::Tap && needs == Needs::Answers);
}

} // namespace azubsim
