#include "tests/support/Frames.h"

namespace tests {

namespace {

std::string element(const std::string& name, const std::string& content) {
    return content.empty() ? '<' + name + " />" : '<' + name + '>' + content + "</" + name + '>';
}

std::string result(const std::string& code, const std::string& message) {
    return element("Result", element("ErrorCode", code) + element("Message", message));
}

} // namespace

std::string frame(const std::string& content) {
    return "<?xml version=\"1.0\" ?><AZUB version=\"0.1.0\">" + content + "</AZUB>\n\n";
}

std::string timestampsFrame(const std::string& capture, const std::string& rendering,
                            const std::string& receiving, const std::string& depth,
                            const std::string& code, const std::string& message) {
    const std::string times =
        element("capture_timestamp", capture) + element("rendering_timestamp", rendering) +
        element("receiving_timestamp", receiving) + element("jitter_buffer_depth", depth);
    return frame(element("GetAudioTs_Answer",
                         element("LipSyncNtpTimestamps", times) + result(code, message)));
}

std::string delayFrame(const std::string& code, const std::string& message) {
    return frame(element("SetAudioDelay_Answer", result(code, message)));
}

} // namespace tests
