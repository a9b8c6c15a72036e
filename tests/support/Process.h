#pragma once

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Files.h"

namespace tests {

/// A program that runs beside the test. The destructor kills it unless `wait` was called.
class Process {
public:
    /// Where its standard output goes: to the test, to a terminal that the test reads, to one that
    /// cannot move its cursor, or to a full disk.
    enum Output { ToTest, ToTerminal, ToDumbTerminal, ToFullDisk };

    /// The program is a path in the build folder. Blanks separate the arguments, except in `more`.
    explicit Process(const std::string& program, const std::string& arguments,
                     Output output = ToTest, const std::vector<std::string>& more = {}) {
        std::istringstream words(arguments);
        std::vector<std::string> all{builtFile(program)};
        all.insert(all.end(), std::istream_iterator<std::string>(words), {});
        all.insert(all.end(), more.begin(), more.end());
        std::vector<char*> argv(all.size() + 1);
        std::transform(all.begin(), all.end(), argv.begin(),
                       [](std::string& argument) { return argument.data(); });
        if (output == ToTerminal || output == ToDumbTerminal) {
            const winsize size{24, 80, 0, 0};
            _pid = forkpty(&_output, nullptr, nullptr, &size);
            _input = dup(_output);
        } else {
            forkOnPipes(output);
        }
        if (_pid == 0) {
            setenv("TERM", output == ToDumbTerminal ? "dumb" : "xterm", 1);
            execv(argv[0], argv.data());
            _exit(127);
        }
    }

    ~Process() {
        if (_pid > 0) {
            signal(SIGKILL);
            wait();
        }
        close(_input);
        close(_output);
    }

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// False if the process could not be created, for example because no terminal is available.
    bool hasStarted() const { return _pid > 0; }

    /// Reads the output that goes to the test, standard error included, up to and including `text`
    /// or to the end of the stream. Leaves out the warning of Android 7's linker.
    std::string readUntil(const std::string& text) const {
        std::string output;
        char byte;
        while (output.find(text) == std::string::npos && read(_output, &byte, 1) == 1) {
            output += byte;
            if (output == "WARNING: linker: ") {
                // Before the program starts, Android 7's linker warns of a flag that lld always
                // sets.
                const std::string rest = readUntil("\n");
                const bool isFlag =
                    rest.find(": unsupported flags DT_FLAGS_1=") != std::string::npos;
                output = isFlag ? "" : std::string(output).append(rest);
            }
        }
        return output;
    }

    /// Reads to the end of the stream or to a zero byte.
    std::string readAll() const { return readUntil(std::string(1, '\0')); }

    /// Closes the test's end of its output, as a reader does that has gone.
    void stopReading() { close(std::exchange(_output, -1)); }

    /// Writes to its standard input.
    void write(const std::string& text) const { dprintf(_input, "%s", text.c_str()); }

    /// Must not be called after `wait`.
    void signal(int number) const { kill(_pid, number); }

    /// Waits until it ends. Returns its exit status, or minus the signal that killed it.
    int wait() {
        int status = 0;
        waitpid(std::exchange(_pid, -1), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

private:
    void forkOnPipes(Output output) {
        int in[2] = {-1, -1};
        int out[2] = {-1, -1};
        if (pipe2(in, O_CLOEXEC) == 0 && pipe2(out, O_CLOEXEC) == 0) {
            _pid = fork();
        }
        if (_pid == 0) {
            dup2(in[0], STDIN_FILENO);
            dup2(output == ToFullDisk ? open("/dev/full", O_WRONLY) : out[1], STDOUT_FILENO);
            dup2(out[1], STDERR_FILENO);
        }
        close(in[0]);
        close(out[1]);
        _input = in[1];
        _output = out[0];
    }

    pid_t _pid = -1;
    int _input = -1;
    int _output = -1;
};

} // namespace tests
