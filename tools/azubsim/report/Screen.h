#pragma once

#include <functional>
#include <string>

namespace azubsim {

/// Opens what is behind a standard descriptor again, so that not blocking on it does not concern
/// other programs, which share the flags of the descriptor that this one was given. Returns a copy
/// of the descriptor where that is not possible or not needed.
int openAgain(int descriptor, int access);

/// Standard output and standard error of a program that must go on whatever their readers do.
///
/// Nothing here blocks: lines that nobody reads are left out and counted.
class Screen {
public:
    Screen();
    ~Screen();

    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    /// Prints one or more lines to standard output, with other control characters made visible. On
    /// a terminal, a line that is too long is broken between words.
    void say(const std::string& lines);

    /// Prints one line to standard error, with "azubsim: " before it and control characters made
    /// visible.
    void warn(const std::string& line);

    /// Called once, if standard output cannot be written any more, with the reason.
    std::function<void(const std::string& reason)> lost;

private:
    struct Stream {
        int descriptor;
        unsigned long leftOut = 0; ///< Lines that nobody has read.
        bool isCut = false;        ///< The last line is not complete.
        bool isLost = false;
    };

    void print(Stream& stream, const std::string& line);

    Stream _output;
    Stream _errors;
};

} // namespace azubsim
