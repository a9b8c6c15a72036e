#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace tests {

/// A program that runs beside the test, and is killed at the latest when this object goes.
class Process {
public:
    enum Surroundings { OnPipes, OnTerminal };

    /// The first argument is the path of the program.
    explicit Process(const std::vector<std::string>& arguments,
                     Surroundings surroundings = OnPipes);
    ~Process();

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// What it prints to standard output and standard error, up to and with `text`, or all of it
    /// if it ends first.
    std::string readUntil(const std::string& text);

    /// The rest of it, up to the end of the program.
    std::string readAll();

    /// What it prints within so many milliseconds.
    std::string readFor(int milliseconds);

    /// Types into its standard input.
    void write(const std::string& text) const;

    void signal(int number) const;

    bool isRunning() const;

    /// Waits for the end. The exit status, or minus the signal that killed it.
    int wait();

private:
    bool readSome();

    void startOnPipes(char** argv);
    void startOnTerminal(char** argv);

    pid_t _pid = -1;
    int _input = -1;
    int _output = -1;
    std::string _read;
};

} // namespace tests
