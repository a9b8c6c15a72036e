#include "tools/azubsim/control/Input.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>

#include "tools/azubsim/control/Command.h"

namespace azubsim {

Input::Input(asio::io_context& io, std::function<void(const std::string&)> handle,
             std::function<void()> leave)
    : _handle(std::move(handle)), _leave(std::move(leave)), _input(io), _timer(io) {}

Input::~Input() {
    if (_input.is_open()) {
        _input.release();
    }
}

void Input::start() {
    std::signal(SIGTTIN, SIG_IGN);
    asio::error_code error;
    _input.assign(STDIN_FILENO, error);
    if (!error) {
        wait();
    }
}

void Input::wait() {
    _input.async_wait(asio::posix::stream_descriptor::wait_read,
                      [this](const asio::error_code& error) {
                          // A file cannot be waited for, but reading from it does not block.
                          if (error != asio::error::operation_aborted) {
                              read();
                          }
                      });
    // On a terminal this concerns standard output too, which would lose output.
    asio::error_code ignored;
    _input.native_non_blocking(false, ignored);
}

// No event tells when this process comes back to the foreground.
void Input::waitForForeground() {
    _timer.expires_after(std::chrono::milliseconds(300));
    _timer.async_wait([this](const asio::error_code& error) {
        if (!error) {
            wait();
        }
    });
}

void Input::read() {
    pollfd polled{STDIN_FILENO, POLLIN, 0};
    if (poll(&polled, 1, 0) == 0) {
        wait();
        return;
    }
    char chunk[4096];
    const ssize_t size = ::read(STDIN_FILENO, chunk, sizeof(chunk));
    const int error = errno;
    const bool isTerminal = isatty(STDIN_FILENO) == 1;
    if (size > 0) {
        add(std::string(chunk, static_cast<std::size_t>(size)));
        wait();
    } else if (size < 0 && error == EIO && isTerminal) {
        waitForForeground();
    } else if (size < 0 && (error == EAGAIN || error == EINTR)) {
        wait();
    } else {
        // The last line may have no line feed.
        _handle(_line);
        if (isTerminal) {
            _leave();
        }
    }
}

void Input::add(const std::string& bytes) {
    for (const char byte : bytes) {
        if (byte == '\n') {
            _handle(std::exchange(_line, ""));
        } else if (_line.size() < Command::maxLine) {
            _line += byte;
        }
    }
}

} // namespace azubsim
