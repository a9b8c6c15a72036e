#include "tools/azubsim/Request.h"

#include <cstring>
#include <pugixml.hpp>
#include <string_view>

#include "tools/azubsim/Words.h"

namespace azubsim {

namespace {

bool parseCommand(const pugi::xml_node& element, Request& request, std::string& error) {
    const std::string_view name = element.name();
    if (name == "GetAudioTs_Request") {
        request.command = Request::Command::GetAudioTs;
        return true;
    }
    if (name == "SetAudioDelay_Request") {
        request.command = Request::Command::SetAudioDelay;
        if (!parseNumber(element.child_value(), request.delayMs)) {
            error = std::string("margin '") + element.child_value() + "' is not a decimal number";
            return false;
        }
        return true;
    }
    error = "unknown command '" + std::string(name) + "'";
    return false;
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
        error = std::string("root element is '") + root.name() + "', expected 'AZUB'";
        return false;
    }
    const std::string_view version = root.attribute("version").value();
    if (version != "0.1.0") {
        error = "version is '" + std::string(version) + "', expected '0.1.0'";
        return false;
    }
    const pugi::xml_node command = root.first_child();
    if (command.type() != pugi::node_element || command.next_sibling()) {
        error = "root element does not contain exactly one command";
        return false;
    }
    return parseCommand(command, request, error);
}

} // namespace azubsim
