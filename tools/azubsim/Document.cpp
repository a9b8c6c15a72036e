#include "tools/azubsim/Document.h"

#include <cstdint>

namespace azubsim {

namespace {

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
            case '&': result += "&amp;"; break;
            case '<': result += "&lt;"; break;
            case '"': result += "&quot;"; break;
            case '>': result += "&gt;"; break;
            default: result += c;
        }
    }
    return result;
}

void print(const Element& element, std::string& out) {
    out += '<' + element.name;
    if (element.text.empty() && element.children.empty()) {
        out += " />";
        return;
    }
    out += '>' + escaped(element.text);
    for (const Element& child : element.children) {
        print(child, out);
    }
    out += "</" + element.name + '>';
}

Element number(const char* name, std::uint64_t value) {
    return {name, std::to_string(value), {}};
}

Element result(const Verdict& verdict) {
    return {"Result",
            "",
            {{"ErrorCode", std::to_string(verdict.code), {}}, {"Message", verdict.message, {}}}};
}

} // namespace

std::string Document::print() const {
    std::string out = "<?xml version=\"1.0\" ?><AZUB version=\"" + escaped(version) + "\">";
    azubsim::print(command, out);
    return out + "</AZUB>";
}

Document timestampsAnswer(const Timestamps& timestamps, const Verdict& verdict) {
    Document document;
    document.command = {"GetAudioTs_Answer",
                        "",
                        {{"LipSyncNtpTimestamps",
                          "",
                          {number("capture_timestamp", timestamps.capture),
                           number("rendering_timestamp", timestamps.rendering),
                           number("receiving_timestamp", timestamps.receiving),
                           number("jitter_buffer_depth", timestamps.jitterDepthMs)}},
                         result(verdict)}};
    return document;
}

Document delayAnswer(const Verdict& verdict) {
    Document document;
    document.command = {"SetAudioDelay_Answer", "", {result(verdict)}};
    return document;
}

} // namespace azubsim
