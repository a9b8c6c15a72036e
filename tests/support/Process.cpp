#include "tests/support/Process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <utility>

namespace tests {

Process::Process(const std::vector<std::string>& arguments) {
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    int fds[2];
    if (pipe(fds) != 0) {
        std::abort();
    }
    _output = fds[0];
    _pid = fork();
    if (_pid == 0) {
        dup2(fds[1], STDOUT_FILENO);
        dup2(fds[1], STDERR_FILENO);
        close(fds[0]);
        close(fds[1]);
        execv(argv[0], argv.data());
        _exit(127);
    }
    close(fds[1]);
}

Process::~Process() {
    if (_pid > 0) {
        signal(SIGKILL);
        wait();
    }
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

int Process::wait() {
    int status = 0;
    waitpid(_pid, &status, 0);
    _pid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace tests
