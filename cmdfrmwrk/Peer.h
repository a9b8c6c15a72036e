#pragma once

#include <cstdint>

#include "comms/TextProtocol.h"
#include "utilities/result/Result.h"

namespace velta::zub::cmdfrmwrk {

/// One end of a connection for commands. Owns the protocol, which owns the link.
class Peer {
public:
    enum class ResultCode : std::int32_t {
        Success = 5900,
        UnknownError = 5901,              ///< Not produced.
        ProtocolError = 5902,             ///< A message could not be sent or received.
        SerializerError = 5903,           ///< A document could not be written or read.
        ConnectionClosed = 5904,          ///< The connection was closed on this side.
        ConnectionClosedByDistant = 5905, ///< The engine has closed the connection.
    };

    struct ResultTrait {
        using ResultCode = Peer::ResultCode;
        static constexpr ResultCode successCode = ResultCode::Success;
        static const char* text(ResultCode code);
    };

    using Result = utilities::result::Result<ResultTrait>;

    /// Takes ownership of `link`. Aborts the process if it is null.
    explicit Peer(comms::Link* link);
    virtual ~Peer();

    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

protected:
    static Result toPeerResult(const comms::TextProtocol::Result& result);

    comms::TextProtocol _protocol;
};

} // namespace velta::zub::cmdfrmwrk
