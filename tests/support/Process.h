#pragma once

#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

namespace tests {

/// A program that runs beside the test, and is killed at the latest when this object goes.
class Process {
public:
    /// Where its standard output goes: to the test, to a terminal whose other end the test has, or
    /// to a disk that is full.
    enum Output { ToTest, ToTerminal, ToFullDisk };

    /// The first argument is the path of the program.
    explicit Process(std::vector<std::string> arguments, Output output = ToTest);
    ~Process();

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// False if no terminal could be opened for it.
    bool hasStarted() const { return _pid > 0; }

    /// What the test gets of its standard output and standard error, up to and with `text`, or all
    /// of it if it ends first.
    std::string readUntil(const std::string& text) const;

    /// The rest of it, up to the end of the program; it has no zero byte.
    std::string readAll() const { return readUntil(std::string(1, '\0')); }

    /// Types into its standard input.
    void write(const std::string& text) const { dprintf(_input, "%s", text.c_str()); }

    /// Not after `wait`.
    void signal(int number) const { kill(_pid, number); }

    /// Waits for the end. The exit status, or minus the signal that killed it.
    int wait();

private:
    void forkOnPipes(Output output);

    pid_t _pid = -1;
    int _input = -1;
    int _output = -1;
};

} // namespace tests
