#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/read_until.hpp>
#include <asio/steady_timer.hpp>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <functional>
#include <string>
#include <utility>

#include "tools/azubsim/report/Screen.h"

namespace azubsim {

/// Reads lines from standard input.
class Input {
public:
    /// Calls `handle` with each line, and with "quit" at the end of what is typed at a terminal.
    Input(asio::io_context& io, std::function<void(const std::string&)> handle)
        : _handle(std::move(handle)), _input(io, openAgain(STDIN_FILENO, O_RDONLY)), _timer(io) {}

    /// Reads until the end. Ignores SIGTTIN, which would stop this process if it read from its
    /// terminal in the background: there it waits until it is in the foreground.
    void start() {
        std::signal(SIGTTIN, SIG_IGN);
        read();
    }

private:
    /// A longer line is no command.
    static constexpr std::size_t maxLine = 65536;

    void read() {
        asio::async_read_until(
            _input, asio::dynamic_buffer(_text, maxLine), '\n',
            [this](const asio::error_code& error, std::size_t size) { received(error, size); });
    }

    void received(const asio::error_code& error, std::size_t size) {
        const bool isTerminal = isatty(STDIN_FILENO) == 1;
        if (!error || error == asio::error::not_found) {
            const std::string line = _text.substr(0, _text.find('\n'));
            _text.erase(0, error ? _text.size() : size);
            _handle(line);
            read();
        } else if (error.value() == EIO && isTerminal) {
            waitForForeground();
        } else if (error != asio::error::operation_aborted) {
            // The last line may have no line feed.
            _handle(_text);
            _handle(isTerminal ? "quit" : "");
        }
    }

    // No event tells when this process comes back to the foreground.
    void waitForForeground() {
        _timer.expires_after(std::chrono::milliseconds(300));
        _timer.async_wait([this](const asio::error_code& cancelled) {
            if (!cancelled) {
                read();
            }
        });
    }

    const std::function<void(const std::string&)> _handle;
    asio::posix::stream_descriptor _input;
    asio::steady_timer _timer;
    std::string _text; ///< That has been read, but not handled.
};

} // namespace azubsim
