#include "tools/azubsim/Commands.h"

#include <cmath>
#include <iomanip>
#include <sstream>
#include <utility>

#include "tools/azubsim/AudioEngine.h"
#include "tools/azubsim/Command.h"
#include "tools/azubsim/Decimal.h"
#include "tools/azubsim/FaultPlan.h"
#include "tools/azubsim/Help.h"
#include "tools/azubsim/Words.h"

namespace azubsim {

namespace {

std::string onOff(bool isOn) {
    return isOn ? "on\n" : "off\n";
}

std::string help() {
    return Commands::table() + "\nFaults:\n" + faultTable();
}

} // namespace

Commands::Commands(Controls controls) : _controls(std::move(controls)) {
    _controls.quit = [this, end = std::move(_controls.quit)] {
        _hasQuit = true;
        end();
    };
}

bool Commands::parse(const std::string& line, Action& action, std::string& error) const {
    const Words words(line);
    const std::string text = words.first + (words.rest.empty() ? "" : ' ' + words.rest);
    error = "invalid command: " + text;
    const Command* const command = Command::find(words.first);
    if (command == nullptr) {
        return false;
    }
    Command::Value value;
    std::string reason;
    if (!command->parse(words.rest, value, reason) || !command->suits(_controls.source, reason)) {
        error += ": " + reason;
        return false;
    }
    if (command->apply == nullptr) {
        action = words.first == "help" ? Action(help) : [this] { return status(); };
        return true;
    }
    action = [this, command, value, confirmation = command->confirm(text, value)] {
        command->apply(_controls, value);
        return confirmation;
    };
    return true;
}

std::string Commands::table() {
    std::ostringstream table;
    for (const Command& command : Command::all()) {
        const std::string usage = std::string(command.name) + ' ' + command.argument;
        table << "  " << std::left << std::setw(22) << usage << command.effect << '\n';
    }
    return table.str();
}

std::string Commands::status() const {
    const bool isSimulation = _controls.source == Source::Simulation;
    std::string text = isSimulation ? engineStatus() : "";
    text += "clients " + std::to_string(_controls.clients()) + '\n';
    if (_controls.source != Source::Recording) {
        text += faultStatus();
    }
    if (scenarioStatus) {
        text += scenarioStatus() + '\n';
    }
    return text + "verbose " + onOff(_controls.isVerbose);
}

std::string Commands::engineStatus() const {
    const AudioEngine& engine = _controls.engine;
    const auto jitter = engine.jitter();
    // A drift makes it any number. One decimal is enough, and the sum turns -0 into 0.
    const double offset = std::round(engine.offsetMs(AudioEngine::Clock::now()) * 10) / 10 + 0.0;
    std::ostringstream text;
    text << "margin " << engine.margin().count() << " ms\n"
         << "call " << onOff(engine.isInCall());
    if (engine.isFollowing()) {
        text << "network from a file\n";
    } else {
        text << "network " << engine.network().count() << " ms\n"
             << "jitter " << (jitter ? std::to_string(jitter->count()) + " ms" : "auto") << '\n';
    }
    text << "slew " << formatDecimal(engine.slew()) << " ms/s\n"
         << "offset " << formatDecimal(offset) << " ms\n"
         << "drift " << formatDecimal(engine.driftPpm()) << " ppm\n"
         << "freeze " << onOff(engine.isFrozen());
    return text.str();
}

std::string Commands::faultStatus() const {
    const FaultPlan& plan = _controls.faults;
    std::string text = plan.faults().empty() ? "fault none\n" : "";
    for (const Fault& fault : plan.faults()) {
        text += "fault " + fault.text() + '\n';
    }
    const auto seed = plan.seed();
    text += "every " + std::to_string(plan.every());
    return text + "\nseed " + (seed ? std::to_string(*seed) : "none") + '\n';
}

} // namespace azubsim
