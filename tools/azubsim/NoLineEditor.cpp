#include "tools/azubsim/LineEditor.h"

namespace azubsim {

std::unique_ptr<LineEditor> LineEditor::create() {
    return nullptr;
}

} // namespace azubsim
