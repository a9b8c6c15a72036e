#pragma once

#include <string_view>

namespace azubsim {

/// Finds the ends of messages in a stream of bytes.
class Framer {
public:
    struct Part {
        std::string_view bytes; ///< The next bytes of the current message, with its end marker.
        bool isEnd;             ///< They complete it.
    };

    /// Takes the bytes of one message from the start of `bytes`.
    Part next(std::string_view& bytes) {
        std::size_t size = 0;
        bool isEnd = false;
        while (size < bytes.size() && !isEnd) {
            const bool isLineFeed = bytes[size++] == '\n';
            isEnd = isLineFeed && _hasLineFeed;
            _hasLineFeed = isLineFeed && !isEnd;
        }
        const Part part{bytes.substr(0, size), isEnd};
        bytes.remove_prefix(size);
        return part;
    }

private:
    bool _hasLineFeed = false; ///< The first half of an end marker.
};

/// A message longer than this is not kept, so that a stream without end markers does not fill the
/// memory. Messages of clients have fewer than a thousand bytes.
inline constexpr std::size_t maxRequestSize = 65536;

} // namespace azubsim
