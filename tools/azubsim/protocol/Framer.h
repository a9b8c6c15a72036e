#pragma once

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tools/azubsim/protocol/Exchange.h"

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

/// Collects the requests in a stream of bytes.
class RequestReader {
public:
    /// Takes bytes from the start of `bytes`. Returns a request, without its end marker, if they
    /// complete one.
    std::optional<std::string> next(std::string_view& bytes) {
        const Framer::Part part = _framer.next(bytes);
        _request += part.bytes;
        // One that is too long is not valid, so its rest is not waited for.
        if (!part.isEnd && _request.size() <= maxSize) {
            return std::nullopt;
        }
        if (part.isEnd) {
            // Of a request that was too long, only half of the marker may be left.
            _request.resize(_request.size() - std::min(_request.size(), std::strlen(endMarker)));
        }
        return std::exchange(_request, "");
    }

    /// What has arrived of a request that is not complete.
    const std::string& rest() const { return _request; }

private:
    /// Requests of clients have fewer than a thousand bytes.
    static constexpr std::size_t maxSize = 65536;

    Framer _framer;
    std::string _request;
};

} // namespace azubsim
