#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace exchange {

/// Answers method calls in the D-Bus wire format, with prepared messages in which only the two
/// serials are filled in. A client authenticates first.
class BusPeer {
public:
    BusPeer();

    bool isComplete(std::string_view received) const;

    /// Throws if it is no method call, or one that is too short.
    const std::string& answer(std::string_view request);

private:
    const std::string& answerCall(std::string_view call);

    std::string _authentication;
    std::vector<std::string> _answers;
    bool _isAuthenticated = false;
    std::uint32_t _calls = 0;
};

} // namespace exchange
