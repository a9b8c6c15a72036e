#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace azubsim {

/// The empty line at the end of every message.
inline constexpr const char* endMarker = "\n\n";

/// The reply to one request: pieces to write one by one, and what then happens to the connection.
struct Reply {
    struct Piece {
        std::chrono::microseconds wait{0}; ///< Before writing `bytes`.
        std::string bytes;
    };

    enum class End {
        Open,  ///< The connection stays open.
        Close, ///< The connection is closed.
        Reset, ///< The connection is closed at once, so that the client sees a reset.
    };

    std::vector<Piece> pieces;
    End end = End::Open;

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
