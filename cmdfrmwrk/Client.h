#pragma once

#include <memory>
#include <string>

#include "cmdfrmwrk/Peer.h"

namespace velta::zub::cmdfrmwrk {

/// Runs typed commands on a connection. Keeps no state between commands. One thread at a time, and
/// two clients must not receive at the same time (see `comms::TextProtocol`).
class Client : public Peer {
public:
    /// Takes ownership of `link`. Aborts the process if it is null.
    explicit Client(comms::Link* link);
    ~Client() override;

    /// Runs one exchange: sends the request, receives the answer and reads it into `answer`. Blocks
    /// without a timeout. Does not check `answer.result`, the engine's verdict.
    ///
    /// Returns `Success` if the answer could be read, otherwise `SerializerError`, `ProtocolError`,
    /// `ConnectionClosed` or `ConnectionClosedByDistant`. After a failure `answer` may be partly
    /// filled. A failure does not close the connection.
    template <typename CommandType, typename Serializer>
    Result executeCommand(const typename CommandType::Request& request,
                          typename CommandType::Answer& answer) {
        const Serializer serializer;
        std::string requestText;
        const auto serialized = serializer.serialize(request, requestText);
        if (serialized.isFailure()) {
            return Result(serialized, ResultCode::SerializerError, ResultCode::Success);
        }
        std::unique_ptr<std::string> answerText;
        Result exchanged = exchange(requestText, answerText);
        if (exchanged.isFailure()) {
            return exchanged;
        }
        return Result(serializer.deserialize(*answerText, answer), ResultCode::SerializerError,
                      ResultCode::Success);
    }

    /// Closes the connection, which ends a blocked exchange with `ConnectionClosed`, and every
    /// later one. Does not block. Any thread.
    void close() { _protocol.close(); }

private:
    Result exchange(const std::string& request, std::unique_ptr<std::string>& answer);
};

} // namespace velta::zub::cmdfrmwrk
