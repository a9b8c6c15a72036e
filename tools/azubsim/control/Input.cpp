#include "tools/azubsim/control/Input.h"

#include <fcntl.h>
#include <unistd.h>

#include <asio/read_until.hpp>
#include <cerrno>
#include <csignal>
#include <utility>

#include "tools/azubsim/report/Screen.h"

namespace azubsim {

namespace {

// A longer line is no command.
constexpr std::size_t maxLine = 65536;

// No event tells when this process comes back to the foreground.
constexpr std::chrono::milliseconds timeInBackground{300};

} // namespace

Input::Input(asio::io_context& io, std::function<void(const std::string&)> handle,
             std::function<void()> leave)
    : _handle(std::move(handle)),
      _leave(std::move(leave)),
      _input(io, openAgain(STDIN_FILENO, O_RDONLY)),
      _timer(io) {}

void Input::start() {
    std::signal(SIGTTIN, SIG_IGN);
    read();
}

void Input::read() {
    asio::async_read_until(
        _input, asio::dynamic_buffer(_text, maxLine), '\n',
        [this](const asio::error_code& error, std::size_t size) { received(error, size); });
}

void Input::received(const asio::error_code& error, std::size_t size) {
    const bool isTerminal = isatty(STDIN_FILENO) == 1;
    if (!error || error == asio::error::not_found) {
        const std::string line = _text.substr(0, _text.find('\n'));
        _text.erase(0, error ? _text.size() : size);
        _handle(line);
        read();
    } else if (error.value() == EIO && isTerminal) {
        _timer.expires_after(timeInBackground);
        _timer.async_wait([this](const asio::error_code& cancelled) {
            if (!cancelled) {
                read();
            }
        });
    } else if (error != asio::error::operation_aborted) {
        // The last line may have no line feed.
        _handle(_text);
        if (isTerminal) {
            _leave();
        }
    }
}

} // namespace azubsim
