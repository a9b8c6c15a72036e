#include "tests/support/Process.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <utility>

namespace tests {

Process::Process(const std::vector<std::string>& arguments, Surroundings surroundings) {
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    if (surroundings == OnTerminal) {
        startOnTerminal(argv.data());
    } else {
        startOnPipes(argv.data());
    }
}

void Process::startOnPipes(char** argv) {
    int input[2];
    int output[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0) {
        std::abort();
    }
    _pid = fork();
    if (_pid == 0) {
        dup2(input[0], STDIN_FILENO);
        dup2(output[1], STDOUT_FILENO);
        dup2(output[1], STDERR_FILENO);
        execv(argv[0], argv);
        _exit(127);
    }
    close(input[0]);
    close(output[1]);
    _input = input[1];
    _output = output[0];
}

void Process::startOnTerminal(char** argv) {
    const winsize size{24, 80, 0, 0};
    _pid = forkpty(&_output, nullptr, nullptr, &size);
    if (_pid == 0) {
        setenv("TERM", "xterm", 1);
        execv(argv[0], argv);
        _exit(127);
    }
    _input = dup(_output);
}

Process::~Process() {
    if (_pid > 0) {
        signal(SIGKILL);
        wait();
    }
    close(_input);
    close(_output);
}

std::string Process::readUntil(const std::string& text) {
    std::size_t at;
    while ((at = _read.find(text)) == std::string::npos && readSome()) {
    }
    const std::size_t end = at == std::string::npos ? _read.size() : at + text.size();
    std::string result = _read.substr(0, end);
    _read.erase(0, end);
    return result;
}

std::string Process::readAll() {
    while (readSome()) {
    }
    return std::exchange(_read, "");
}

std::string Process::readFor(int milliseconds) {
    pollfd output{_output, POLLIN, 0};
    while (poll(&output, 1, milliseconds) > 0 && readSome()) {
    }
    return std::exchange(_read, "");
}

void Process::write(const std::string& text) const {
    if (::write(_input, text.data(), text.size()) < 0) {
        std::abort();
    }
}

bool Process::readSome() {
    char chunk[4096];
    const ssize_t n = read(_output, chunk, sizeof(chunk));
    if (n > 0) {
        _read.append(chunk, static_cast<std::size_t>(n));
    }
    return n > 0;
}

void Process::signal(int number) const {
    kill(_pid, number);
}

bool Process::isRunning() const {
    siginfo_t info{};
    waitid(P_PID, static_cast<id_t>(_pid), &info, WEXITED | WNOHANG | WNOWAIT);
    return info.si_pid == 0;
}

int Process::wait() {
    int status = 0;
    waitpid(_pid, &status, 0);
    _pid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace tests
