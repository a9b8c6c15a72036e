#include "tools/azubsim/Console.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "tools/azubsim/Foreground.h"
#include "tools/azubsim/Words.h"

namespace azubsim {

Console::Console(asio::io_context& io, const Commands& commands, Screen& screen)
    : _commands(commands),
      _screen(screen),
      _input(io),
      _timer(io),
      _stop(io),
      _hasTerminal(isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1) {}

Console::~Console() {
    _screen.setEditor(nullptr);
    if (_input.is_open()) {
        // Standard input is not ours to close.
        _input.release();
    }
}

void Console::start() {
    std::signal(SIGTTIN, SIG_IGN);
    asio::error_code error;
    _input.assign(STDIN_FILENO, error);
    if (error) {
        end("standard input is not open");
    } else {
        attend();
    }
}

// Reads commands as soon as this process is in the foreground.
void Console::attend() {
    if (!isForeground()) {
        waitForForeground();
        return;
    }
    if (_hasTerminal && !_editor) {
        openEditor();
    }
    if (_editor) {
        _editor->show();
    }
    wait();
}

void Console::openEditor() {
    _editor = LineEditor::create();
    if (!_editor) {
        _hasTerminal = false;
        _screen.say("azubsim: this program was built without line editing");
        return;
    }
    _screen.setEditor(_editor.get());
    waitForStop();
}

void Console::wait() {
    _input.async_wait(asio::posix::stream_descriptor::wait_read, [this](asio::error_code error) {
        if (error == asio::error::operation_aborted) {
            return;
        }
        if (!isForeground()) {
            waitForForeground();
            return;
        }
        // A file cannot be waited for, but reading from it does not block.
        read();
    });
    setBlocking(true);
}

// No event tells when this process comes back to the foreground.
void Console::waitForForeground() {
    _timer.expires_after(std::chrono::milliseconds(300));
    _timer.async_wait([this](asio::error_code error) {
        if (!error) {
            attend();
        }
    });
}

// The key that stops the process must not leave the editor's terminal settings to the shell.
void Console::waitForStop() {
    asio::error_code ignored;
    _stop.add(SIGTSTP, ignored);
    _stop.async_wait([this](asio::error_code error, int) {
        if (error || !_editor) {
            return;
        }
        _editor->leave();
        _stop.clear();
        std::raise(SIGTSTP);
        // Here the process has been continued, in the foreground or in the background.
        _input.cancel();
        waitForStop();
        attend();
    });
}

// Standard input blocks except while it is read. A wait makes it non-blocking, and on a terminal
// this concerns standard output too, which would lose output.
void Console::setBlocking(bool isBlocking) {
    asio::error_code ignored;
    _input.native_non_blocking(!isBlocking, ignored);
}

void Console::read() {
    char chunk[1024];
    setBlocking(false);
    const ssize_t n = ::read(STDIN_FILENO, chunk, sizeof(chunk));
    const int error = errno;
    setBlocking(true);
    if (n > 0) {
        _hasRead = true;
        const std::string bytes(chunk, static_cast<std::size_t>(n));
        _editor ? edit(bytes) : split(bytes);
    } else if (n < 0 && (error == EAGAIN || error == EINTR)) {
        wait();
    } else {
        // The last line may have no line feed.
        execute(_line);
        end(n == 0 ? "end of input" : std::string("cannot read input: ") + std::strerror(error));
    }
}

void Console::edit(const std::string& bytes) {
    _editor->add(bytes);
    std::string line;
    for (;;) {
        switch (_editor->next(line)) {
            case LineEditor::Event::NeedsInput: wait(); return;
            case LineEditor::Event::End: end("end of input"); return;
            case LineEditor::Event::Line: execute(line); break;
        }
        if (_commands.hasQuit()) {
            return;
        }
        _editor->show();
    }
}

void Console::split(const std::string& bytes) {
    _line += bytes;
    std::size_t lineEnd;
    while ((lineEnd = _line.find('\n')) != std::string::npos) {
        const std::string line = _line.substr(0, lineEnd);
        _line.erase(0, lineEnd + 1);
        execute(line);
        if (_commands.hasQuit()) {
            return;
        }
    }
    wait();
}

void Console::execute(const std::string& line) {
    if (Words(line).first.empty()) {
        return;
    }
    Commands::Action action;
    std::string error;
    if (_commands.parse(line, action, error)) {
        _screen.say(action());
    } else {
        _screen.say(error + " (try help)");
    }
}

void Console::end(const std::string& reason) {
    _stop.clear();
    _screen.setEditor(nullptr);
    _editor.reset();
    // Nobody needs to be told if there was no input from the start.
    if (_hasRead && !_commands.hasQuit()) {
        _screen.warn(reason + "; commands are no longer read");
    }
    if (_input.is_open()) {
        _input.release();
    }
}

} // namespace azubsim
