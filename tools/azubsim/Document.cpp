#include "tools/azubsim/Document.h"

#include <cstdint>
#include <sstream>

namespace azubsim {

namespace {

pugi::xml_node addCommand(pugi::xml_document& document, const char* name) {
    pugi::xml_node root = document.append_child("AZUB");
    root.append_attribute("version") = "0.1.0";
    return root.append_child(name);
}

void addNumber(pugi::xml_node parent, const char* name, std::uint64_t value) {
    parent.append_child(name).text() = static_cast<unsigned long long>(value);
}

void addResult(pugi::xml_node command, const Verdict& verdict) {
    pugi::xml_node result = command.append_child("Result");
    result.append_child("ErrorCode").text() = verdict.code;
    pugi::xml_node message = result.append_child("Message");
    if (!verdict.message.empty()) {
        message.text() = verdict.message.c_str();
    }
}

} // namespace

std::string timestampsAnswer(const Timestamps& timestamps, const Verdict& verdict) {
    pugi::xml_document document;
    const pugi::xml_node command = addCommand(document, "GetAudioTs_Answer");
    pugi::xml_node record = pugi::xml_node(command).append_child("LipSyncNtpTimestamps");
    addNumber(record, "capture_timestamp", timestamps.capture);
    addNumber(record, "rendering_timestamp", timestamps.rendering);
    addNumber(record, "receiving_timestamp", timestamps.receiving);
    addNumber(record, "jitter_buffer_depth", timestamps.jitterDepthMs);
    addResult(command, verdict);
    return print(document);
}

std::string delayAnswer(const Verdict& verdict) {
    pugi::xml_document document;
    addResult(addCommand(document, "SetAudioDelay_Answer"), verdict);
    return print(document);
}

std::string print(const pugi::xml_document& document) {
    std::ostringstream printed;
    document.save(printed, "", pugi::format_raw | pugi::format_no_declaration);
    std::string text = printed.str();
    // The engine writes a blank before "/>"; pugixml does not.
    for (std::size_t end = 0; (end = text.find("/>", end)) != std::string::npos; end += 3) {
        text.insert(end, " ");
    }
    return "<?xml version=\"1.0\" ?>" + text;
}

} // namespace azubsim
