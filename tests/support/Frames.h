#pragma once

#include <string>

namespace tests {

/// A message as sent on the socket: a document with this content in its root, and the end marker.
inline std::string frame(const std::string& content) {
    return "<?xml version=\"1.0\" ?><AZUB version=\"0.1.0\">" + content + "</AZUB>\n\n";
}

/// An element as the engine prints it.
inline std::string element(const std::string& name, const std::string& content) {
    return content.empty() ? '<' + name + " />" : '<' + name + '>' + content + "</" + name + '>';
}

inline std::string resultElement(const std::string& code, const std::string& message) {
    return element("Result", element("ErrorCode", code) + element("Message", message));
}

/// The engine's answers.
inline std::string timestampsFrame(const std::string& capture, const std::string& rendering,
                                   const std::string& receiving, const std::string& depth,
                                   const std::string& code = "1000",
                                   const std::string& message = "") {
    const std::string times =
        element("capture_timestamp", capture) + element("rendering_timestamp", rendering) +
        element("receiving_timestamp", receiving) + element("jitter_buffer_depth", depth);
    return frame(element("GetAudioTs_Answer",
                         element("LipSyncNtpTimestamps", times) + resultElement(code, message)));
}

inline std::string delayFrame(const std::string& code, const std::string& message = "") {
    return frame(element("SetAudioDelay_Answer", resultElement(code, message)));
}

/// The result of a call whose connection the engine has closed.
inline const std::string closedByDistant =
    "An error has occured in the transport layer (Code 1005): {Connection closed by distant (Code "
    "5905): {Protocol has been closed by distant (Code 40005): {Closed by distant (Code 10003)}}}";

} // namespace tests
