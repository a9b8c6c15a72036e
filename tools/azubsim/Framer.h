#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "tools/azubsim/Reply.h"

namespace azubsim {

/// Finds the ends of messages in a stream of bytes.
class Framer {
public:
    /// A longer message is cut, so that a stream without end markers does not fill the memory. An
    /// engine's messages have fewer than a thousand bytes.
    static constexpr std::size_t maxSize = 65536;

    /// Takes bytes up to the end of the current message, and removes them from `bytes`. Returns
    /// whether the message is complete.
    bool add(std::string_view& bytes) {
        const std::string_view marker = endMarker;
        while (!bytes.empty()) {
            _message += bytes.front();
            bytes.remove_prefix(1);
            const bool hasMarker =
                _message.size() >= marker.size() &&
                _message.compare(_message.size() - marker.size(), marker.size(), marker) == 0;
            if (hasMarker) {
                _message.resize(_message.size() - marker.size());
                return true;
            }
            if (_message.size() == maxSize) {
                return true;
            }
        }
        return false;
    }

    /// The message so far, without its end marker.
    const std::string& message() const { return _message; }
    std::string take() { return std::exchange(_message, {}); }

private:
    std::string _message;
};

} // namespace azubsim
