#pragma once

#include <memory>
#include <string>

namespace azubsim {

/// The prompt of a terminal, and the line that is typed at it, with history.
///
/// Nothing here blocks: the owner reads the terminal and passes on what was typed. While the
/// process is in the background, the terminal is not touched.
class LineEditor {
public:
    enum class Event { NeedsInput, Line, End };

    /// Null if this program was built without line editing. The process must be in the foreground.
    static std::unique_ptr<LineEditor> create();

    /// Restores the terminal.
    virtual ~LineEditor() = default;

    /// Adds bytes that were typed.
    virtual void add(const std::string& bytes) = 0;

    /// Edits until a line is complete or the bytes are used up. A complete line, or the end of the
    /// input, takes the prompt away until `show`.
    virtual Event next(std::string& line) = 0;

    /// Removes the prompt and the typed text from the screen. Returns false if they were not there.
    virtual bool hide() = 0;

    /// Draws them at the start of a line.
    virtual void show() = 0;

    /// Hides the prompt and gives the terminal back its usual settings until `show`.
    virtual void leave() = 0;
};

} // namespace azubsim
