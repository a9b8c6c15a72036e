#include "comms/TextProtocol.h"

#include <cstring>

namespace velta::zub::comms {

namespace {

char receiveChunkBytes[512]; // Of all objects: callers hold one lock.

TextProtocol::Result toProtocolResult(const Link::Result& result) {
    using ResultCode = TextProtocol::ResultCode;
    switch (result.code) {
        case Link::ResultCode::Success: return ResultCode::Success;
        case Link::ResultCode::Closed:
            return TextProtocol::Result(ResultCode::ProtocolClosed) << result;
        case Link::ResultCode::ClosedByDistant:
            return TextProtocol::Result(ResultCode::ProtocolClosedByDistant) << result;
        default: return TextProtocol::Result(ResultCode::LinkError) << result;
    }
}

} // namespace

const std::string TextProtocol::endMessageMarker = "\n\n";

TextProtocol::TextProtocol(Link* link) : Protocol<std::string>(link) {}

TextProtocol::~TextProtocol() = default;

TextProtocol::Result TextProtocol::send(const std::string& message) {
    std::string frame;
    frame.reserve(message.size() + endMessageMarker.size());
    frame += message;
    frame += endMessageMarker;
    return toProtocolResult(_link->write(frame.data(), frame.size()));
}

TextProtocol::Result TextProtocol::receive(std::string*& message) {
    message = nullptr;
    // Each search starts at the front: the marker may arrive in two reads.
    std::string::size_type end = _receiveBuffer.find(endMessageMarker);
    while (end == std::string::npos) {
        Result result = receiveChunk();
        if (result.isFailure()) {
            return result;
        }
        end = _receiveBuffer.find(endMessageMarker);
    }
    message = new std::string(_receiveBuffer, 0, end);
    _receiveBuffer.erase(0, end + endMessageMarker.size());
    return ResultCode::Success;
}

// Appends the bytes of one read. If there is a zero byte, drops it and the bytes after it.
TextProtocol::Result TextProtocol::receiveChunk() {
    std::size_t bytesRead = 0;
    const Link::Result result =
        _link->read(receiveChunkBytes, sizeof(receiveChunkBytes) - 1, bytesRead);
    if (result.isSuccess()) {
        receiveChunkBytes[bytesRead] = '\0';
        _receiveBuffer.append(receiveChunkBytes,
                              strnlen(receiveChunkBytes, sizeof(receiveChunkBytes)));
    }
    return toProtocolResult(result);
}

} // namespace velta::zub::comms
