#pragma once

namespace velta::utilities {

/// Writes one fatal record under the tag "VELTA" and aborts the process.
[[noreturn]] void assertionFailed(const char* source, int line, const char* condition,
                                  const char* message);

} // namespace velta::utilities

/// For broken invariants only: expected failures are results. `source` and `line` name the site in
/// the record. They are fixed, so they do not change when code moves.
#define VELTA_ASSERT(source, line, condition, message)                                    \
    do {                                                                                  \
        if (!(condition)) {                                                               \
            ::velta::utilities::assertionFailed((source), (line), #condition, (message)); \
        }                                                                                 \
    } while (false)
