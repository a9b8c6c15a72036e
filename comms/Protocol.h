#pragma once

#include <cstdint>

#include "comms/Link.h"
#include "utilities/log/Assertion.h"
#include "utilities/result/Result.h"

namespace velta::zub::comms {

/// Sends and receives whole messages over a link, which it owns. One thread at a time.
template <typename Message>
class Protocol {
public:
    enum class ResultCode : std::int32_t {
        Success = 40000,
        UnknownError = 40001,            ///< Not produced.
        ProtocolError = 40002,           ///< Not produced.
        LinkError = 40003,               ///< The link failed; its result is the cause.
        ProtocolClosed = 40004,          ///< The link was closed on this side.
        ProtocolClosedByDistant = 40005, ///< The peer has closed the connection.
        InternalError = 40006,           ///< Not produced.
    };

    struct ResultTrait {
        using ResultCode = typename Protocol::ResultCode;
        static constexpr ResultCode successCode = ResultCode::Success;
        static const char* text(ResultCode code) {
            switch (code) {
                case ResultCode::Success: return "Success";
                case ResultCode::UnknownError: return "Unknown error";
                case ResultCode::ProtocolError: return "Protocol error";
                case ResultCode::LinkError: return "Link error";
                case ResultCode::ProtocolClosed: return "Protocol is closed.";
                case ResultCode::ProtocolClosedByDistant:
                    return "Protocol has been closed by distant";
                case ResultCode::InternalError: return "Internal error";
            }
            return utilities::result::unreachableText;
        }
    };

    using Result = utilities::result::Result<ResultTrait>;

    /// Takes ownership of `link`. Aborts the process if it is null.
    explicit Protocol(Link* link) : _link(link) {
        // The site is a fixed text and names another file.
        VELTA_ASSERT("comms/src/TextProtocol.cpp", 97, link != NULL, "Null pointer");
    }

    virtual ~Protocol() { delete _link; }

    Protocol(const Protocol&) = delete;
    Protocol& operator=(const Protocol&) = delete;

    /// Sends one message. Blocks without a timeout until the socket has taken all of it. Returns
    /// `Success`, `LinkError`, `ProtocolClosed` or `ProtocolClosedByDistant`.
    virtual Result send(const Message& message) = 0;

    /// Receives one whole message. Blocks without a timeout until it is there. Returns the same
    /// codes as `send`. On success the caller owns `message`; after a failure it is null.
    virtual Result receive(Message*& message) = 0;

    /// Closes the link, which ends a blocked `send` or `receive` with `ProtocolClosed`, and every
    /// later one. Does not block. Any thread.
    void close() { _link->close(); }

protected:
    Link* _link;
};

} // namespace velta::zub::comms
