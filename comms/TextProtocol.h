#pragma once

#include <string>

#include "comms/Protocol.h"

namespace velta::zub::comms {

/// Text messages, each closed by `endMessageMarker`.
///
/// All objects receive through one static buffer: receives must not run at the same time, not
/// even on two objects. The bytes of an unfinished message are kept without a bound.
class TextProtocol : public Protocol<std::string> {
public:
    /// "\n\n". A message must not contain it: the receiver would split the message there.
    static const std::string endMessageMarker;

    explicit TextProtocol(Link* link);
    ~TextProtocol() override;

    Result send(const std::string& message) override;
    Result receive(std::string*& message) override;

private:
    Result receiveChunk();

    std::string _receiveBuffer;
};

} // namespace velta::zub::comms
