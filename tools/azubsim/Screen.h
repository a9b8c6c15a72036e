#pragma once

#include <iosfwd>
#include <string>

namespace azubsim {

class LineEditor;

/// Standard output and standard error. A line that is printed while somebody types appears above
/// the prompt and does not mix with the typed text.
class Screen {
public:
    /// Prints a line, or several, to standard output at once, with control characters made visible.
    void say(const std::string& text);

    /// The same to standard error, with "azubsim: " before it.
    void warn(const std::string& text);

    /// Like `say`, but leaves the line out if this would block because nobody reads the output.
    void sayIfRead(const std::string& line);

    /// The prompt to keep in order; null if there is none.
    void setEditor(LineEditor* editor) { _editor = editor; }

private:
    void print(std::ostream& stream, const std::string& text);

    LineEditor* _editor = nullptr;
    unsigned long _leftOut = 0; ///< Lines that `sayIfRead` did not print.
};

} // namespace azubsim
