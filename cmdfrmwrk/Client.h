#pragma once

#include <memory>
#include <string>

#include "cmdfrmwrk/Peer.h"

namespace velta::zub::cmdfrmwrk {

/// Runs typed commands on a connection. Keeps nothing from one command to the next. One thread at
/// a time, and no receive of another client at the same time (see `comms::TextProtocol`).
class Client : public Peer {
public:
    /// Takes over `link`; null aborts the process.
    explicit Client(comms::Link* link);
    ~Client() override;

    /// One exchange: writes the request, sends it, waits without a time-out for the answer and
    /// reads that. `answer.result`, the engine's own verdict, is not looked at.
    ///
    /// Returns `Success` when an answer was read, `SerializerError`, `ProtocolError`,
    /// `ConnectionClosed` or `ConnectionClosedByDistant`. After a failure `answer` may be filled
    /// in part, and the connection stays as it is.
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

private:
    Result exchange(const std::string& request, std::unique_ptr<std::string>& answer);
};

} // namespace velta::zub::cmdfrmwrk
