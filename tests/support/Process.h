#pragma once

#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

namespace tests {

/// A program that runs beside the test. The destructor kills it unless `wait` was called.
class Process {
public:
    /// Where its standard output goes: to the test, to a terminal that the test reads, to one that
    /// cannot move its cursor, or to a full disk.
    enum Output { ToTest, ToTerminal, ToDumbTerminal, ToFullDisk };

    /// The first argument is the program, a path in the build folder.
    explicit Process(std::vector<std::string> arguments, Output output = ToTest);
    ~Process();

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// False if the process could not be created, for example because no terminal is available.
    bool hasStarted() const { return _pid > 0; }

    /// Reads the output that goes to the test, standard error included, up to and including `text`
    /// or to the end of the stream. Leaves out the warning of Android 7's linker.
    std::string readUntil(const std::string& text) const;

    /// Reads to the end of the stream or to a zero byte.
    std::string readAll() const { return readUntil(std::string(1, '\0')); }

    /// Closes the test's end of its output, as a reader does that has gone.
    void stopReading();

    /// Writes to its standard input.
    void write(const std::string& text) const { dprintf(_input, "%s", text.c_str()); }

    /// Must not be called after `wait`.
    void signal(int number) const { kill(_pid, number); }

    /// Waits until it ends. Returns its exit status, or minus the signal that killed it.
    int wait();

private:
    void forkOnPipes(Output output);

    pid_t _pid = -1;
    int _input = -1;
    int _output = -1;
};

} // namespace tests
