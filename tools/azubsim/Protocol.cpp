#include "tools/azubsim/Protocol.h"

#include <charconv>
#include <cstring>
#include <pugixml.hpp>
#include <string_view>

namespace azubsim {

namespace {

bool parseDecimal(std::string_view text, std::uint64_t& value) {
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && rest == end;
}

bool parseCommand(const pugi::xml_node& element, Request& request, std::string& error) {
    const std::string_view name = element.name();
    if (name == "GetAudioTs_Request") {
        request.command = Request::Command::GetAudioTs;
        return true;
    }
    if (name == "SetAudioDelay_Request") {
        request.command = Request::Command::SetAudioDelay;
        error = "delay is no decimal number";
        return parseDecimal(element.child_value(), request.delayMs);
    }
    error = "unknown command '" + std::string(name) + "'";
    return false;
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            default:
                result += c;
        }
    }
    return result;
}

std::string element(const std::string& name, const std::string& content) {
    return content.empty() ? "<" + name + " />" : "<" + name + ">" + content + "</" + name + ">";
}

std::string answer(const std::string& name, const std::string& content, const Verdict& verdict) {
    const std::string result =
        element("Result", element("ErrorCode", std::to_string(verdict.code)) +
                              element("Message", escaped(verdict.message)));
    return "<?xml version=\"1.0\" ?><AZUB version=\"0.1.0\">" + element(name, content + result) +
           "</AZUB>" + endMarker;
}

} // namespace

bool parseRequest(const std::string& text, Request& request, std::string& error) {
    pugi::xml_document document;
    const pugi::xml_parse_result parsed = document.load_buffer(text.data(), text.size());
    if (!parsed) {
        error = std::string("not XML: ") + parsed.description();
        return false;
    }
    const pugi::xml_node root = document.document_element();
    if (std::strcmp(root.name(), "AZUB") != 0) {
        error = "root element is not 'AZUB'";
        return false;
    }
    if (std::strcmp(root.attribute("version").value(), "0.1.0") != 0) {
        error = "version is not '0.1.0'";
        return false;
    }
    const pugi::xml_node command = root.first_child();
    if (command.type() != pugi::node_element || command.next_sibling()) {
        error = "root element does not hold one command";
        return false;
    }
    return parseCommand(command, request, error);
}

std::string timestampsAnswer(const Timestamps& timestamps, const Verdict& verdict) {
    const auto field = [](const char* name, std::uint64_t value) {
        return element(name, std::to_string(value));
    };
    return answer(
        "GetAudioTs_Answer",
        element("LipSyncNtpTimestamps", field("capture_timestamp", timestamps.capture) +
                                            field("rendering_timestamp", timestamps.rendering) +
                                            field("receiving_timestamp", timestamps.receiving) +
                                            field("jitter_buffer_depth", timestamps.jitterDepthMs)),
        verdict);
}

std::string delayAnswer(const Verdict& verdict) {
    return answer("SetAudioDelay_Answer", "", verdict);
}

} // namespace azubsim
