#include "tools/azubsim/protocol/Document.h"

#include <cstdint>
#include <sstream>

#include "tools/azubsim/protocol/Names.h"
#include "tools/common/Error.h"

namespace azubsim {

namespace {

using tools::Error;

pugi::xml_node addAnswer(pugi::xml_document& document, Kind kind) {
    pugi::xml_node root = document.append_child(names::root);
    root.append_attribute(names::version) = names::currentVersion;
    return root.append_child((nameOf(kind) + names::answerEnding).c_str());
}

void addNumber(pugi::xml_node parent, const char* name, std::uint64_t value) {
    parent.append_child(name).text() = static_cast<unsigned long long>(value);
}

void addResult(pugi::xml_node command, const Verdict& verdict) {
    pugi::xml_node result = command.append_child(names::result);
    result.append_child(names::code).text() = verdict.code;
    pugi::xml_node message = result.append_child(names::message);
    if (!verdict.message.empty()) {
        message.text() = verdict.message.c_str();
    }
}

} // namespace

std::string timestampsAnswer(const Timestamps& timestamps, const Verdict& verdict) {
    pugi::xml_document document;
    const pugi::xml_node command = addAnswer(document, Kind::GetAudioTs);
    pugi::xml_node record = pugi::xml_node(command).append_child(names::timestamps);
    addNumber(record, names::capture, timestamps.capture);
    addNumber(record, names::rendering, timestamps.rendering);
    addNumber(record, names::receiving, timestamps.receiving);
    addNumber(record, names::jitterDepth, timestamps.jitterDepthMs);
    addResult(command, verdict);
    return print(document);
}

std::string delayAnswer(const Verdict& verdict) {
    pugi::xml_document document;
    addResult(addAnswer(document, Kind::SetAudioDelay), verdict);
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

pugi::xml_node parseDocument(const std::string& text, const std::string& ending,
                             pugi::xml_document& document, std::string& command) {
    const auto parsed =
        document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!parsed) {
        throw Error(std::string("not XML: ") + parsed.description());
    }
    const pugi::xml_node root = document.document_element();
    const std::string name = root.name();
    if (name != names::root) {
        throw Error("root element is '" + name + "', expected '" + names::root + "'");
    }
    const std::string version = root.attribute(names::version).value();
    if (version != names::currentVersion) {
        throw Error("version is '" + version + "', expected '" + names::currentVersion + "'");
    }
    const pugi::xml_node element = root.first_child();
    if (element.type() != pugi::node_element || element.next_sibling()) {
        throw Error("root element does not contain exactly one command");
    }
    command = element.name();
    if (command.size() <= ending.size() ||
        command.compare(command.size() - ending.size(), ending.size(), ending) != 0) {
        throw Error("unknown command '" + command + "'");
    }
    command.resize(command.size() - ending.size());
    return element;
}

} // namespace azubsim
