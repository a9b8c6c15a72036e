#include "cmdfrmwrk/Peer.h"

namespace velta::zub::cmdfrmwrk {

const char* Peer::ResultTrait::text(ResultCode code) {
    switch (code) {
        case ResultCode::Success: return "Success";
        case ResultCode::UnknownError: return "Unknown error";
        case ResultCode::ProtocolError: return "Protocol error";
        case ResultCode::SerializerError: return "Serializer error";
        case ResultCode::ConnectionClosed: return "Connection closed";
        case ResultCode::ConnectionClosedByDistant: return "Connection closed by distant";
    }
    return utilities::result::unreachableText;
}

Peer::Peer(comms::Link* link) : _protocol(link) {}

Peer::~Peer() = default;

Peer::Result Peer::toPeerResult(const comms::TextProtocol::Result& result) {
    using ProtocolCode = comms::TextProtocol::ResultCode;
    switch (result.code) {
        case ProtocolCode::Success: return ResultCode::Success;
        case ProtocolCode::ProtocolClosed: return Result(ResultCode::ConnectionClosed) << result;
        case ProtocolCode::ProtocolClosedByDistant:
            return Result(ResultCode::ConnectionClosedByDistant) << result;
        default: return Result(ResultCode::ProtocolError) << result;
    }
}

} // namespace velta::zub::cmdfrmwrk
