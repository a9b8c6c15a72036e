#include "tools/azubsim/LineEditor.h"

#include <histedit.h>

#include <clocale>
#include <cstdio>
#include <cwchar>

#include "tools/azubsim/Foreground.h"

namespace azubsim {

namespace {

char prompt[] = "azubsim> ";
constexpr std::size_t promptColumns = sizeof(prompt) - 1;
constexpr int historyLines = 100;
constexpr char endOfInput = 'D' & 0x1f;

char* promptOf(EditLine*) {
    return prompt;
}

class TerminalEditor final : public LineEditor {
public:
    TerminalEditor();
    ~TerminalEditor() override;

    TerminalEditor(const TerminalEditor&) = delete;
    TerminalEditor& operator=(const TerminalEditor&) = delete;

    void add(const std::string& bytes) override { _bytes += bytes; }
    Event next(std::string& line) override;
    bool hide() override;
    void show() override;
    void leave() override;

private:
    static int readChar(EditLine* editLine, wchar_t* character);
    void bindKeys();
    void remember(const std::string& line);
    void finish();
    void erase();

    EditLine* _editLine;
    History* _history;
    std::string _bytes;        ///< Typed, but not yet edited.
    std::mbstate_t _decoder{}; ///< The first bytes of a character.
    bool _isEditing = false;
    bool _isShown = false;
    bool _hasLeft = false;
};

TerminalEditor::TerminalEditor()
    : _editLine(el_init("azubsim", stdin, stdout, stderr)), _history(history_init()) {
    HistEvent event;
    history(_history, &event, H_SETSIZE, historyLines);
    history(_history, &event, H_SETUNIQUE, 1);
    el_set(_editLine, EL_CLIENTDATA, this);
    el_set(_editLine, EL_HIST, history, _history);
    el_set(_editLine, EL_PROMPT, promptOf);
    el_set(_editLine, EL_EDITOR, "emacs");
    el_set(_editLine, EL_GETCFN, readChar);
    bindKeys();
}

// Some keys would wait here for the next key, and nothing may block.
void TerminalEditor::bindKeys() {
    el_set(_editLine, EL_BIND, "^R", "ed-search-prev-history", nullptr);
    for (const char* const key : {"^V", "^X", "\\ex", "\\eX"}) {
        el_set(_editLine, EL_BIND, "-r", key, nullptr);
    }
}

TerminalEditor::~TerminalEditor() {
    hide();
    // This sets the terminal, which must not happen in the background. The process ends anyway.
    if (isForeground()) {
        el_end(_editLine);
        history_end(_history);
    }
}

// Passes a typed character to the editor. Returns 0 if there is none, which ends only this call of
// the editor.
int TerminalEditor::readChar(EditLine* editLine, wchar_t* character) {
    void* data = nullptr;
    el_get(editLine, EL_CLIENTDATA, &data);
    auto& self = *static_cast<TerminalEditor*>(data);
    constexpr auto invalid = static_cast<std::size_t>(-1);
    constexpr auto incomplete = static_cast<std::size_t>(-2);
    while (!self._bytes.empty()) {
        const char byte = self._bytes.front();
        self._bytes.erase(0, 1);
        const std::size_t result = std::mbrtowc(character, &byte, 1, &self._decoder);
        if (result == invalid) {
            self._decoder = {};
        } else if (result != incomplete) {
            return 1;
        }
    }
    return 0;
}

LineEditor::Event TerminalEditor::next(std::string& line) {
    while (!_bytes.empty()) {
        if (!_isEditing) {
            show();
        }
        const std::size_t before = _bytes.size();
        int size = 0;
        const char* const text = el_gets(_editLine, &size);
        if (_bytes.size() == before) {
            // The terminal is gone.
            _bytes.clear();
        }
        if (text == nullptr || size <= 0) {
            continue;
        }
        if (size == 1 && text[0] == endOfInput) {
            hide();
            finish();
            return Event::End;
        }
        if (text[size - 1] == '\n') {
            line.assign(text, static_cast<std::size_t>(size) - 1);
            finish();
            remember(line);
            return Event::Line;
        }
    }
    return Event::NeedsInput;
}

void TerminalEditor::remember(const std::string& line) {
    if (line.find_first_not_of(' ') != std::string::npos) {
        HistEvent event;
        history(_history, &event, H_ENTER, line.c_str());
    }
}

void TerminalEditor::finish() {
    el_set(_editLine, EL_UNBUFFERED, 0);
    _isEditing = false;
    _isShown = false;
}

bool TerminalEditor::hide() {
    if (!_isShown || !isForeground()) {
        return false;
    }
    erase();
    _isShown = false;
    return true;
}

void TerminalEditor::erase() {
    el_resize(_editLine);
    int columns = 80;
    const char* up = nullptr;
    el_get(_editLine, EL_GETTC, "co", &columns);
    el_get(_editLine, EL_GETTC, "up", &up);
    const LineInfoW* const line = el_wline(_editLine);
    const auto cursor = promptColumns + static_cast<std::size_t>(line->cursor - line->buffer);
    const auto end = promptColumns + static_cast<std::size_t>(line->lastchar - line->buffer);
    const auto width = static_cast<std::size_t>(columns);
    std::string text = "\r";
    if (up != nullptr) {
        for (std::size_t row = cursor / width; row > 0; --row) {
            text += "\x1b[A";
        }
        text += "\x1b[J";
    } else {
        // This terminal only prints. Spaces erase one line; a longer text has to stay.
        text += end < width ? std::string(end, ' ') + '\r' : "\n";
    }
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
}

void TerminalEditor::show() {
    if (!isForeground()) {
        return;
    }
    if (_hasLeft) {
        // The editor sets the terminal only when its mode changes.
        el_set(_editLine, EL_PREP_TERM, 0);
        el_set(_editLine, EL_PREP_TERM, 1);
        _hasLeft = false;
    }
    if (_isEditing) {
        el_resize(_editLine);
        el_set(_editLine, EL_REFRESH);
    } else {
        el_set(_editLine, EL_UNBUFFERED, 1);
    }
    _isEditing = true;
    _isShown = true;
}

void TerminalEditor::leave() {
    hide();
    _isShown = false;
    _hasLeft = true;
    if (isForeground()) {
        el_set(_editLine, EL_PREP_TERM, 0);
    }
}

} // namespace

std::unique_ptr<LineEditor> LineEditor::create() {
    // The editor measures what is typed in the characters of the user's locale.
    std::setlocale(LC_CTYPE, "");
    return std::make_unique<TerminalEditor>();
}

} // namespace azubsim
