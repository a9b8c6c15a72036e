#pragma once

#include <string>

#include "comms/Protocol.h"

namespace velta::zub::comms {

/// Text messages, each followed by the end marker.
///
/// All objects receive through one static buffer, so `receive` must not run on two threads at the
/// same time, even on two objects. The size of an unfinished message is not limited.
class TextProtocol : public Protocol<std::string> {
public:
    /// "\n\n", an empty line. A message must not contain it: the receiver would split it there.
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
