#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace tests {

/// A program that runs beside the test, and is killed at the latest when this object goes.
class Process {
public:
    /// The first argument is the path of the program.
    explicit Process(const std::vector<std::string>& arguments);
    ~Process();

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// What it prints to standard output and standard error, up to and with `text`, or all of it
    /// if it ends first.
    std::string readUntil(const std::string& text);

    /// The rest of it, up to the end of the program.
    std::string readAll();

    void signal(int number) const;

    /// Waits for the end. The exit status, or minus the signal that killed it.
    int wait();

private:
    bool readSome();

    pid_t _pid;
    int _output;
    std::string _read;
};

} // namespace tests
