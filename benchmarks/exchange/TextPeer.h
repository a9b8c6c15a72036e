#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace exchange {

/// Answers the text protocol. A request that is not byte for byte the expected one is refused, so
/// whoever is answered moves the same bytes as the library.
class TextPeer {
public:
    TextPeer();

    static bool isComplete(std::string_view received);

    /// Throws if the request is a wrong one.
    const std::string& answer(std::string_view request);

private:
    std::vector<std::string> _answers;
    std::size_t _next = 0;
};

} // namespace exchange
