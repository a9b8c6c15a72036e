#include "tools/azubsim/Answer.h"

#include <charconv>
#include <cstring>
#include <pugixml.hpp>
#include <string_view>

namespace azubsim {

namespace {

// Decimal, also with a plus sign, or hexadecimal with "0x".
template <typename Number>
bool parse(const pugi::xml_node& parent, const char* name, Number& number) {
    std::string_view text = parent.child_value(name);
    const bool isHex = text.substr(0, 2) == "0x";
    text.remove_prefix(isHex ? 2 : text.substr(0, 1) == "+" ? 1 : 0);
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number, isHex ? 16 : 10);
    return error == std::errc() && rest == end;
}

bool parseResult(const pugi::xml_node& result, Answer& answer) {
    answer.message = result.child_value("Message");
    return parse(result, "ErrorCode", answer.code) && result.child("Message");
}

bool parseTimestamps(const pugi::xml_node& element, Timestamps& timestamps) {
    return parse(element, "capture_timestamp", timestamps.capture) &&
           parse(element, "rendering_timestamp", timestamps.rendering) &&
           parse(element, "receiving_timestamp", timestamps.receiving) &&
           parse(element, "jitter_buffer_depth", timestamps.jitterDepthMs);
}

} // namespace

bool parseAnswer(const std::string& text, Answer& answer) {
    pugi::xml_document document;
    if (!document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8)) {
        return false;
    }
    const pugi::xml_node root = document.document_element();
    if (std::strcmp(root.name(), "AZUB") != 0 ||
        std::strcmp(root.attribute("version").value(), "0.1.0") != 0) {
        return false;
    }
    answer = {};
    if (const pugi::xml_node command = root.child("GetAudioTs_Answer")) {
        return parseTimestamps(command.child("LipSyncNtpTimestamps"),
                               answer.timestamps.emplace()) &&
               parseResult(command.child("Result"), answer);
    }
    return parseResult(root.child("SetAudioDelay_Answer").child("Result"), answer);
}

} // namespace azubsim
