#include "cmdfrmwrk/Client.h"

#include "utilities/log/Assertion.h"

namespace velta::zub::cmdfrmwrk {

Client::Client(comms::Link* link) : Peer(link) {}

Client::~Client() = default;

Client::Result Client::exchange(const std::string& request, std::unique_ptr<std::string>& answer) {
    Result sent = toPeerResult(_protocol.send(request));
    if (sent.isFailure()) {
        return sent;
    }
    std::string* answerStr = nullptr;
    Result received = toPeerResult(_protocol.receive(answerStr));
    if (received.isFailure()) {
        return received;
    }
    // The site is a fixed text and names another file.
    VELTA_ASSERT("lipsyncapi/src/Service.cpp", 94, answerStr != NULL, "answer string is null");
    answer.reset(answerStr);
    return ResultCode::Success;
}

} // namespace velta::zub::cmdfrmwrk
