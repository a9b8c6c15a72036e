#include "tools/azubsim/protocol/Request.h"

#include "tools/azubsim/protocol/Document.h"
#include "tools/common/Error.h"
#include "tools/common/Number.h"

namespace azubsim {

Request parseRequest(const std::string& text) {
    pugi::xml_document document;
    Request request;
    const auto element = parseDocument(text, names::requestEnding, document, request.command);
    request.kind = kindOf(request.command);
    if (request.kind == Kind::SetAudioDelay) {
        const std::string margin = element.child_value();
        const auto delayMs = tools::parseInteger<std::uint64_t>(margin);
        if (!delayMs) {
            throw tools::Error("margin '" + margin + "' is not a decimal number");
        }
        request.delayMs = *delayMs;
    }
    return request;
}

std::string commandOf(const std::string& request) {
    try {
        return parseRequest(request).command;
    } catch (const tools::Error&) {
        return "";
    }
}

} // namespace azubsim
