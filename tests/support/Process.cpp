#include "tests/support/Process.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "tests/support/Files.h"

namespace tests {

Process::Process(std::vector<std::string> arguments, Output output) {
    arguments[0] = builtFile(arguments[0]);
    std::vector<char*> argv(arguments.size() + 1);
    std::transform(arguments.begin(), arguments.end(), argv.begin(),
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

void Process::forkOnPipes(Output output) {
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

Process::~Process() {
    if (_pid > 0) {
        signal(SIGKILL);
        wait();
    }
    close(_input);
    close(_output);
}

std::string Process::readUntil(const std::string& text) const {
    std::string output;
    char byte;
    while (output.find(text) == std::string::npos && read(_output, &byte, 1) == 1) {
        output += byte;
        if (output == "WARNING: linker: ") {
            // Before the program starts, Android 7's linker warns of a flag that lld always sets.
            const std::string rest = readUntil("\n");
            const bool isFlag = rest.find(": unsupported flags DT_FLAGS_1=") != std::string::npos;
            output.append(rest);
            if (isFlag) {
                output.clear();
            }
        }
    }
    return output;
}

void Process::stopReading() {
    close(std::exchange(_output, -1));
}

int Process::wait() {
    int status = 0;
    waitpid(std::exchange(_pid, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace tests
