#pragma once

#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/steady_timer.hpp>
#include <functional>
#include <string>

namespace azubsim {

/// Reads lines from standard input.
class Input {
public:
    /// Calls `handle` with each line, and `leave` at the end of input that is typed at a terminal.
    Input(asio::io_context& io, std::function<void(const std::string&)> handle,
          std::function<void()> leave);

    /// Reads until the end. Ignores SIGTTIN, which would stop this process if it read from its
    /// terminal in the background: there it waits until it is in the foreground.
    void start();

private:
    void read();
    void received(const asio::error_code& error, std::size_t size);

    const std::function<void(const std::string&)> _handle;
    const std::function<void()> _leave;
    asio::posix::stream_descriptor _input;
    asio::steady_timer _timer;
    std::string _text; ///< That has been read, but not handled.
};

} // namespace azubsim
