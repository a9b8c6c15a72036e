#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace azubsim {

/// The empty line at the end of every message.
inline constexpr const char* endMarker = "\n\n";

/// For a piece that is written at once.
inline constexpr std::chrono::microseconds noWait{0};

/// The reply to one request: pieces to write one by one, and what then happens to the connection.
struct Reply {
    struct Piece {
        std::chrono::microseconds wait{0}; ///< Before writing `bytes`.
        std::string bytes;
    };

    std::vector<Piece> pieces;
    bool closes = false; ///< Whether the connection is then closed.

    /// All pieces joined.
    std::string bytes() const {
        std::string all;
        for (const Piece& piece : pieces) {
            all += piece.bytes;
        }
        return all;
    }
};

} // namespace azubsim
