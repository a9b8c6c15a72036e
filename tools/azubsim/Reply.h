#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace azubsim {

/// Closes every message.
inline constexpr const char* endMarker = "\n\n";

/// What is done about one request: pieces that are written one by one, and how it ends.
struct Reply {
    struct Piece {
        std::chrono::microseconds wait{0}; ///< Before it is written.
        std::string bytes;
    };

    enum class End {
        Open,  ///< The connection goes on.
        Close, ///< It is closed.
        Reset, ///< It is closed at once, in a way that the client reads as a reset.
    };

    std::vector<Piece> pieces;
    End end = End::Open;

    /// All pieces in a row.
    std::string bytes() const {
        std::string all;
        for (const Piece& piece : pieces) {
            all += piece.bytes;
        }
        return all;
    }
};

} // namespace azubsim
