#include "tools/azubsim/Console.h"

#include <unistd.h>

#include <charconv>
#include <iostream>

namespace azubsim {

namespace {

template <typename Number>
bool parse(const std::string& text, Number& number) {
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end;
}

std::string help() {
    return "call on|off        be in a call, or in none: then every verdict is 1003\n"
           "fault FAULT        spoil answers so, in place of the faults before\n"
           "fault none         spoil no answer\n"
           "every N            spoil one answer in N\n"
           "seed S             choose answers and faults at random, repeatably\n"
           "verbose on|off     show each message\n"
           "status             show these settings\n"
           "quit               end\n"
           "\nFaults:\n" +
           faultTable();
}

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

// What is printed about a line.
std::string Console::execute(const std::string& line) {
    const std::size_t nameEnd = std::min(line.find(' '), line.size());
    const std::string name = line.substr(0, nameEnd);
    const std::string argument = line.substr(std::min(nameEnd + 1, line.size()));
    if (name.empty()) {
        return "";
    }
    if (name == "help") {
        return help();
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
    } else if (name == "every" && parse(argument, number) && number > 0) {
        _simulator.faults.setEvery(number);
    } else if (name == "seed" && parse(argument, number)) {
        _simulator.faults.setSeed(number);
    } else if (name == "quit") {
        _wantsToQuit = true;
    } else {
        return "not understood: " + line + " (try help)\n";
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
    return text + "every " + std::to_string(_simulator.faults.every()) + '\n';
}

} // namespace azubsim
