#include "tools/azubsim/protocol/Messages.h"

#include <algorithm>
#include <charconv>
#include <sstream>
#include <string_view>
#include <utility>

#include "tools/azubsim/protocol/Names.h"
#include "tools/common/Error.h"
#include "tools/common/Number.h"

namespace azubsim {

namespace {

using pugi::xml_node;
using tools::require;

constexpr std::pair<const char*, std::uint64_t Timestamps::*> timestampFields[] = {
    {names::capture, &Timestamps::capture},
    {names::rendering, &Timestamps::rendering},
    {names::receiving, &Timestamps::receiving},
    {names::jitterDepth, &Timestamps::jitterDepthMs}};

// Returns the only element inside the root.
xml_node parseDocument(const std::string& text, pugi::xml_document& document) {
    const auto parsed =
        document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
    require(parsed, std::string("not XML: ") + parsed.description());
    const xml_node root = document.document_element();
    const std::string name = root.name();
    require(name == names::root, "root element is '" + name + "', expected '" + names::root + "'");
    const std::string version = root.attribute(names::version).value();
    require(version == names::currentVersion,
            "version is '" + version + "', expected '" + names::currentVersion + "'");
    const xml_node element = root.first_child();
    require(element.type() == pugi::node_element && !element.next_sibling(),
            "root element does not contain exactly one command");
    return element;
}

// The command whose request or answer this element is.
std::string commandIn(xml_node element, const std::string& ending) {
    const std::string name = element.name();
    const std::size_t size = std::max(name.size(), ending.size()) - ending.size();
    require(size > 0 && name.substr(size) == ending, "unknown command '" + name + "'");
    return name.substr(0, size);
}

xml_node child(xml_node parent, const char* name) {
    const xml_node found = parent.child(name);
    require(found, std::string("no ") + name);
    return found;
}

// Decimal, also with a plus sign, or hexadecimal with "0x".
template <typename Number>
void parse(xml_node parent, const char* name, Number& number) {
    const std::string value = child(parent, name).child_value();
    std::string_view text = value;
    const bool isHex = text.substr(0, 2) == "0x";
    text.remove_prefix(isHex ? 2 : text.substr(0, 1) == "+" ? 1 : 0);
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number, isHex ? 16 : 10);
    require(error == std::errc() && rest == end, std::string(name) + " is '" + value + "'");
}

} // namespace

Request parseRequest(const std::string& text) {
    Request request;
    try {
        pugi::xml_document document;
        const xml_node element = parseDocument(text, document);
        request.command = commandIn(element, names::requestEnding);
        if (request.command == names::setAudioDelay) {
            const std::string margin = element.child_value();
            request.marginMs = tools::parseInteger<std::uint64_t>(margin);
            require(request.marginMs.has_value(),
                    "margin '" + margin + "' is not a decimal number");
        }
    } catch (const tools::Error& e) {
        return {"", {}, e.what()};
    }
    return request;
}

Answer parseAnswer(const std::string& text) {
    pugi::xml_document document;
    const xml_node element = parseDocument(text, document);
    Answer answer{commandIn(element, names::answerEnding), {}, {}};
    if (answer.command == names::getAudioTs) {
        const xml_node record = child(element, names::timestamps);
        Timestamps& timestamps = answer.timestamps.emplace();
        for (const auto& [name, field] : timestampFields) {
            parse(record, name, timestamps.*field);
        }
    }
    const xml_node result = child(element, names::result);
    parse(result, names::code, answer.verdict.code);
    answer.verdict.message = child(result, names::message).child_value();
    return answer;
}

std::string print(const Answer& answer) {
    pugi::xml_document document;
    xml_node root = document.append_child(names::root);
    root.append_attribute(names::version) = names::currentVersion;
    xml_node element = root.append_child((answer.command + names::answerEnding).c_str());
    if (answer.timestamps) {
        xml_node record = element.append_child(names::timestamps);
        for (const auto& [name, field] : timestampFields) {
            record.append_child(name).text() = *answer.timestamps.*field;
        }
    }
    xml_node result = element.append_child(names::result);
    result.append_child(names::code).text() = answer.verdict.code;
    xml_node message = result.append_child(names::message);
    if (!answer.verdict.message.empty()) {
        message.text() = answer.verdict.message.c_str();
    }
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
