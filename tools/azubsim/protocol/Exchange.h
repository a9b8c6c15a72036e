#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "tools/common/Time.h"

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

/// A request and what the client got for it.
struct Exchange {
    int client = 0;
    tools::Time time{0};     ///< When the request was complete.
    std::string request;     ///< Without its end marker. Empty for bytes that nobody asked for.
    bool isComplete = true;  ///< The request had its end marker.
    Reply reply;             ///< What the client got, with the end markers, and when.
    std::size_t leftOut = 0; ///< Bytes that the client got too, but that were too many to keep.
    std::string fault;       ///< The text of the fault applied to it, or empty.
    std::string said;        ///< With a fault: the engine's own answer. Without: empty.

    /// From the request to the engine's complete answer, without the fault's delay. Zero if
    /// unknown.
    std::chrono::microseconds engineTook{0};

    /// The engine sent bytes without a request.
    bool isUnasked() const { return request.empty() && !reply.pieces.empty(); }

    /// From the request to the last bytes of the reply.
    std::chrono::microseconds replyTook() const {
        std::chrono::microseconds all(0);
        for (const Reply::Piece& piece : reply.pieces) {
            all += piece.wait;
        }
        return all;
    }
};

} // namespace azubsim
