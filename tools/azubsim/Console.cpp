#include "tools/azubsim/Console.h"

#include <unistd.h>

#include <iostream>

#include "tools/azubsim/Help.h"
#include "tools/azubsim/Words.h"

namespace azubsim {

namespace {

bool parseSwitch(const std::string& text, bool& isOn) {
    isOn = text == "on";
    return isOn || text == "off";
}

} // namespace

Console::Console(Simulator& simulator)
    : _simulator(simulator), _isTerminal(isatty(STDIN_FILENO) == 1) {}

void Console::prompt() const {
    if (_isTerminal) {
        std::cout << "azubsim> " << std::flush;
    }
}

bool Console::read() {
    char chunk[1024];
    const ssize_t n = ::read(STDIN_FILENO, chunk, sizeof(chunk));
    if (n <= 0) {
        // The last line may have no line feed.
        std::cout << execute(_input) << std::flush;
        return false;
    }
    _input.append(chunk, static_cast<std::size_t>(n));
    std::size_t end;
    while (!_wantsToQuit && (end = _input.find('\n')) != std::string::npos) {
        std::cout << execute(_input.substr(0, end)) << std::flush;
        _input.erase(0, end + 1);
    }
    if (!_wantsToQuit) {
        prompt();
    }
    return !_wantsToQuit;
}

// Executes a line and returns the text to print.
std::string Console::execute(const std::string& line) {
    const Words words(line);
    const std::string& name = words.first;
    const std::string& argument = words.rest;
    if (name.empty()) {
        return "";
    }
    if (name == "help") {
        return commandTable() + "\nFaults:\n" + faultTable();
    }
    if (name == "status") {
        return status();
    }
    if (name == "fault") {
        return executeFault(argument);
    }
    bool isOn = false;
    unsigned int number = 0;
    if (name == "call" && parseSwitch(argument, isOn)) {
        _simulator.engine.setInCall(isOn);
    } else if (name == "verbose" && parseSwitch(argument, isOn)) {
        _simulator.isVerbose = isOn;
    } else if (name == "every" && parseNumber(argument, number) && number > 0) {
        _simulator.faults.setEvery(number);
    } else if (name == "seed" && parseNumber(argument, number)) {
        _simulator.faults.setSeed(number);
    } else if (name == "seed" && argument == "none") {
        _simulator.faults.setSeed(std::nullopt);
    } else if (name == "quit") {
        _wantsToQuit = true;
    } else {
        return "invalid command: " + line + " (try help)\n";
    }
    return "";
}

std::string Console::executeFault(const std::string& argument) {
    Fault fault;
    std::string error;
    if (argument != "none" && !Fault::parse(argument, fault, error)) {
        return error + " (try help)\n";
    }
    _simulator.faults.clear();
    if (argument != "none") {
        _simulator.faults.add(fault);
    }
    return "";
}

std::string Console::status() const {
    std::string text = std::string("call ") + (_simulator.engine.isInCall() ? "on\n" : "off\n");
    for (const Fault& fault : _simulator.faults.faults()) {
        text += "fault " + fault.text() + '\n';
    }
    text += "every " + std::to_string(_simulator.faults.every());
    const auto seed = _simulator.faults.seed();
    text += "\nseed " + (seed ? std::to_string(*seed) : "none");
    return text + "\nverbose " + (_simulator.isVerbose ? "on\n" : "off\n");
}

} // namespace azubsim
