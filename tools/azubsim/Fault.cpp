#include "tools/azubsim/Fault.h"

#include <algorithm>
#include <cstdint>
#include <pugixml.hpp>
#include <string_view>

#include "tools/azubsim/Document.h"
#include "tools/azubsim/Words.h"

namespace azubsim {

namespace {

constexpr int maxDelayMs = 3600000;
constexpr int usualFloodBytes = 16777216;
constexpr int maxFloodBytes = 268435456;
constexpr std::chrono::microseconds noWait(0);

// What the fault "missing" can leave out.
constexpr const char* elementNames =
    "LipSyncNtpTimestamps capture_timestamp rendering_timestamp receiving_timestamp "
    "jitter_buffer_depth Result ErrorCode Message";

bool isElement(const std::string& name) {
    const std::string names = std::string(" ") + elementNames + ' ';
    return name.find(' ') == std::string::npos && names.find(' ' + name + ' ') != std::string::npos;
}

// Calls `change` with every element, after the elements inside it.
template <typename Change>
void forEachElement(pugi::xml_node parent, const Change& change) {
    for (pugi::xml_node child = parent.first_child(); child;) {
        const pugi::xml_node next = child.next_sibling();
        if (child.type() == pugi::node_element) {
            forEachElement(child, change);
            change(child);
        }
        child = next;
    }
}

bool hasElements(pugi::xml_node element) {
    const auto children = element.children();
    return std::any_of(children.begin(), children.end(),
                       [](pugi::xml_node child) { return child.type() == pugi::node_element; });
}

void setText(pugi::xml_node element, const std::string& text) {
    element.remove_children();
    if (!text.empty()) {
        element.text() = text.c_str();
    }
}

void setVerdict(pugi::xml_node root, int code, const std::string& message) {
    forEachElement(root, [&](pugi::xml_node element) {
        const std::string_view name = element.name();
        if (name == "ErrorCode") {
            setText(element, std::to_string(code));
        } else if (name == "Message") {
            setText(element, message);
        }
    });
}

void setNumbers(pugi::xml_node root, const std::string& text) {
    forEachElement(root, [&](pugi::xml_node element) {
        if (!hasElements(element) && std::string_view(element.name()) != "Message") {
            setText(element, text);
        }
    });
}

void remove(pugi::xml_node root, const std::string& name) {
    forEachElement(root, [&](pugi::xml_node element) {
        if (element.name() == name) {
            element.parent().remove_child(element);
        }
    });
}

// Delivers the answer after a change to its root element.
template <typename Change>
Reply edited(const std::string& answer, const Change& change) {
    pugi::xml_document document;
    if (!document.load_buffer(answer.data(), answer.size())) {
        return deliver(answer);
    }
    change(document.document_element());
    return deliver(print(document));
}

// One write per byte, far enough apart that the client reads each byte separately.
std::vector<Reply::Piece> split(const std::string& bytes) {
    std::vector<Reply::Piece> pieces;
    pieces.reserve(bytes.size());
    for (const char byte : bytes) {
        pieces.push_back({std::chrono::microseconds(100), std::string(1, byte)});
    }
    return pieces;
}

} // namespace

const std::vector<Fault::Description>& Fault::descriptions() {
    static const std::vector<Description> all{
        {Kind::Error, "error", "CODE [MESSAGE]", "answer with this error code and message"},
        {Kind::Version, "version", "TEXT", "set the version of the document to TEXT"},
        {Kind::Element, "element", "NAME", "rename the command element to NAME"},
        {Kind::Missing, "missing", "NAME", "leave out every element called NAME"},
        {Kind::Number, "number", "TEXT", "replace every number with TEXT"},
        {Kind::Cut, "cut", "", "send half of the document, then the end marker"},
        {Kind::CloseBefore, "close-before", "", "close the connection without an answer"},
        {Kind::CloseMiddle, "close-middle", "", "close the connection after half of the document"},
        {Kind::Split, "split", "", "send each byte in a separate write"},
        {Kind::Double, "double", "", "send the answer twice in one write"},
        {Kind::Zero, "zero", "", "insert a zero byte in the middle of the document"},
        {Kind::Silence, "silence", "", "send no answer and keep the connection open"},
        {Kind::Delay, "delay", "MS [SPREAD]",
         "send the answer MS ms late, plus or minus SPREAD ms"},
        {Kind::Flood, "flood", "[BYTES]", "send bytes without an end marker, then close"},
        {Kind::Reset, "reset", "", "reset the connection"},
    };
    return all;
}

bool Fault::parse(const std::string& text, Fault& fault, std::string& error) {
    const Words words(text);
    const std::string& name = words.first;
    const std::string& argument = words.rest;
    const auto& all = descriptions();
    const auto description =
        std::find_if(all.begin(), all.end(),
                     [&](const Description& candidate) { return name == candidate.name; });
    if (description == all.end()) {
        error = "unknown fault '" + name + "'";
        return false;
    }
    const bool takesArgument = *description->argument != '\0';
    const bool needsArgument = takesArgument && *description->argument != '[';
    if (needsArgument && argument.empty()) {
        error = "fault '" + name + "' needs an argument: " + description->argument;
        return false;
    }
    if (!takesArgument && !argument.empty()) {
        error = "fault '" + name + "' takes no argument, but got '" + argument + "'";
        return false;
    }
    fault._kind = description->kind;
    fault._text = text;
    return fault.setArgument(argument, error);
}

bool Fault::setArgument(const std::string& argument, std::string& error) {
    _argument = argument;
    if (_kind == Kind::Error) {
        const Words words(argument);
        _argument = words.rest;
        error = "error code '" + words.first + "' is not a signed 32-bit decimal number";
        return parseNumber(words.first, _number);
    }
    if (_kind == Kind::Delay) {
        return setDelay(argument, error);
    }
    if (_kind == Kind::Flood) {
        _number = usualFloodBytes;
        error = "flood '" + argument + "' is not a number of bytes from 1 to " +
                std::to_string(maxFloodBytes);
        return argument.empty() ||
               (parseNumber(argument, _number) && _number > 0 && _number <= maxFloodBytes);
    }
    error = "unknown element '" + argument + "'; answers have " + elementNames;
    return _kind != Kind::Missing || isElement(argument);
}

bool Fault::setDelay(const std::string& argument, std::string& error) {
    const Words words(argument);
    error = "delay '" + argument + "' is not a number of ms from 0 to " +
            std::to_string(maxDelayMs) + ", and a spread of at most that number";
    return parseNumber(words.first, _number) && _number >= 0 && _number <= maxDelayMs &&
           (words.rest.empty() ||
            (parseNumber(words.rest, _spread) && _spread >= 0 && _spread <= _number));
}

Reply Fault::apply(const std::string& answer, std::mt19937& random) const {
    const std::string firstHalf = answer.substr(0, answer.size() / 2);
    const std::string secondHalf = answer.substr(firstHalf.size()) + endMarker;
    // There is no default, so the compiler warns about a kind that is forgotten here.
    switch (_kind) {
        case Kind::Error:
            return edited(answer, [&](auto root) { setVerdict(root, _number, _argument); });
        case Kind::Version:
            return edited(answer,
                          [&](auto root) { root.attribute("version") = _argument.c_str(); });
        case Kind::Element:
            return edited(answer,
                          [&](auto root) { root.first_child().set_name(_argument.c_str()); });
        case Kind::Missing: return edited(answer, [&](auto root) { remove(root, _argument); });
        case Kind::Number: return edited(answer, [&](auto root) { setNumbers(root, _argument); });
        case Kind::Cut: return deliver(firstHalf);
        case Kind::CloseBefore: return {{}, Reply::End::Close};
        case Kind::CloseMiddle: return {{{noWait, firstHalf}}, Reply::End::Close};
        case Kind::Split: return {split(answer + endMarker), Reply::End::Open};
        case Kind::Double: return deliver(answer + endMarker + answer);
        case Kind::Zero: return {{{noWait, firstHalf + '\0' + secondHalf}}, Reply::End::Open};
        case Kind::Silence: return {{}, Reply::End::Open};
        case Kind::Delay: return {{{drawDelay(random), answer + endMarker}}, Reply::End::Open};
        case Kind::Flood:
            return {{{noWait, std::string(static_cast<std::size_t>(_number), 'x')}},
                    Reply::End::Close};
        case Kind::Reset: return {{}, Reply::End::Reset};
    }
    return deliver(answer);
}

// Uses a remainder, because distributions differ between standard libraries.
std::chrono::milliseconds Fault::drawDelay(std::mt19937& random) const {
    const auto range = static_cast<std::uint32_t>(2 * _spread + 1);
    return std::chrono::milliseconds(_number - _spread + static_cast<int>(random() % range));
}

Reply deliver(const std::string& answer) {
    return {{{noWait, answer + endMarker}}, Reply::End::Open};
}

} // namespace azubsim
