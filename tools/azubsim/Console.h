#pragma once

#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>
#include <memory>
#include <string>

#include "tools/azubsim/Commands.h"
#include "tools/azubsim/LineEditor.h"
#include "tools/azubsim/Screen.h"

namespace azubsim {

/// Reads commands from standard input: on a terminal with line editing, else line by line.
class Console {
public:
    Console(asio::io_context& io, const Commands& commands, Screen& screen);

    /// Restores the terminal.
    ~Console();

    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    /// Reads until the end of standard input or until "quit". Ignores SIGTTIN, which would stop
    /// this process if it read from its terminal in the background.
    void start();

private:
    void openEditor();
    void attend();
    void wait();
    void waitForForeground();
    void waitForStop();
    void setBlocking(bool isBlocking);
    void read();
    void edit(const std::string& bytes);
    void split(const std::string& bytes);
    void end(const std::string& reason);
    void execute(const std::string& line);

    const Commands& _commands;
    Screen& _screen;
    asio::posix::stream_descriptor _input;
    asio::steady_timer _timer;
    asio::signal_set _stop;
    bool _hasTerminal;
    bool _hasRead = false;
    std::unique_ptr<LineEditor> _editor;
    std::string _line; ///< Without an editor: the start of a line.
};

} // namespace azubsim
