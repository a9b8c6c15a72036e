#pragma once

#include <iosfwd>
#include <string>

namespace azubsim {

class LineEditor;

/// Standard output and standard error. A line that is printed while somebody types does not tear
/// the typed line: it appears above the prompt.
class Screen {
public:
    /// Prints a line, or several, to standard output at once. Adds a line feed if there is none.
    void say(const std::string& line);

    /// The same to standard error, with "azubsim: " before it, and with control characters made
    /// visible.
    void warn(const std::string& line);

    /// The prompt to keep in order; null if there is none.
    void setEditor(LineEditor* editor) { _editor = editor; }

private:
    void print(std::ostream& stream, const std::string& line);

    LineEditor* _editor = nullptr;
};

} // namespace azubsim
