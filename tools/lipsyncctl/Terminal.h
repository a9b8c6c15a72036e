#pragma once

namespace lipsyncctl {

/// Whether standard output is a terminal on which a program can write anywhere.
bool hasMovableCursor();

} // namespace lipsyncctl
