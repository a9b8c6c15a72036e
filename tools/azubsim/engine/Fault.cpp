#include "tools/azubsim/engine/Fault.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <pugixml.hpp>
#include <string_view>

#include "tools/azubsim/protocol/Document.h"
#include "tools/azubsim/protocol/Names.h"
#include "tools/common/Error.h"
#include "tools/common/Lines.h"
#include "tools/common/Number.h"
#include "tools/common/Text.h"

namespace azubsim {

namespace {

using tools::Error;
using tools::parseInteger;
using tools::Words;

constexpr int maxDelayMs = 3600000;
constexpr int usualFloodBytes = 16777216;
constexpr int maxFloodBytes = 268435456;

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
        if (name == names::code) {
            setText(element, std::to_string(code));
        } else if (name == names::message) {
            setText(element, message);
        }
    });
}

void setNumbers(pugi::xml_node root, const std::string& text) {
    forEachElement(root, [&](pugi::xml_node element) {
        if (!hasElements(element) && std::string_view(element.name()) != names::message) {
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

const std::vector<Fault::Entry>& Fault::all() {
    static const std::vector<Entry> all{
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
    };
    return all;
}

std::string Fault::table() {
    std::string table;
    for (const Entry& fault : all()) {
        const std::string usage = std::string(fault.name) + ' ' + fault.argument;
        table += tools::printed("  %-22s%s\n", usage.c_str(), fault.effect);
    }
    return table;
}

Fault::Fault(const std::string& text) : _text(text) {
    const Words words(text);
    const std::string& name = words.first;
    const auto entry = std::find_if(all().begin(), all().end(),
                                    [&](const Entry& candidate) { return name == candidate.name; });
    if (entry == all().end()) {
        throw Error("unknown fault '" + name + "'");
    }
    const bool takesArgument = *entry->argument != '\0';
    const bool needsArgument = takesArgument && *entry->argument != '[';
    if (needsArgument && words.rest.empty()) {
        throw Error("fault '" + name + "' needs an argument: " + entry->argument);
    }
    if (!takesArgument && !words.rest.empty()) {
        throw Error("fault '" + name + "' takes no argument, but got '" + words.rest + "'");
    }
    _kind = entry->kind;
    setArgument(words.rest);
}

void Fault::setArgument(const std::string& argument) {
    _argument = argument;
    if (_kind == Kind::Error) {
        const Words words(argument);
        const auto code = parseInteger<int>(words.first);
        if (!code) {
            throw Error("error code '" + words.first + "' is not a signed 32-bit decimal number");
        }
        _number = *code;
        _argument = words.rest;
    } else if (_kind == Kind::Delay) {
        setDelay(argument);
    } else if (_kind == Kind::Flood) {
        _number = argument.empty() ? usualFloodBytes : parseInteger<int>(argument).value_or(0);
        if (_number < 1 || _number > maxFloodBytes) {
            throw Error("flood '" + argument + "' is not a number of bytes from 1 to " +
                        std::to_string(maxFloodBytes));
        }
    } else if (_kind == Kind::Missing) {
        const auto* const end = std::end(names::inAnswers);
        if (std::find(std::begin(names::inAnswers), end, argument) == end) {
            std::string all;
            for (const char* const name : names::inAnswers) {
                all += std::string(" ") + name;
            }
            throw Error("unknown element '" + argument + "'; answers have" + all);
        }
    }
}

void Fault::setDelay(const std::string& argument) {
    const Words words(argument);
    _number = parseInteger<int>(words.first).value_or(-1);
    _spread = words.rest.empty() ? 0 : parseInteger<int>(words.rest).value_or(-1);
    if (_number < 0 || _number > maxDelayMs || _spread < 0 || _spread > _number) {
        throw Error("delay '" + argument + "' is not a number of ms from 0 to " +
                    std::to_string(maxDelayMs) + ", and a spread of at most that number");
    }
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
                          [&](auto root) { root.attribute(names::version) = _argument.c_str(); });
        case Kind::Element:
            return edited(answer,
                          [&](auto root) { root.first_child().set_name(_argument.c_str()); });
        case Kind::Missing: return edited(answer, [&](auto root) { remove(root, _argument); });
        case Kind::Number: return edited(answer, [&](auto root) { setNumbers(root, _argument); });
        case Kind::Cut: return deliver(firstHalf);
        case Kind::CloseBefore: return {{}, true};
        case Kind::CloseMiddle: return {{{noWait, firstHalf}}, true};
        case Kind::Split: return {split(answer + endMarker), false};
        case Kind::Double: return deliver(answer + endMarker + answer);
        case Kind::Zero: return {{{noWait, firstHalf + '\0' + secondHalf}}, false};
        case Kind::Silence: return {{}, false};
        case Kind::Delay: return {{{drawDelay(random), answer + endMarker}}, false};
        case Kind::Flood:
            return {{{noWait, std::string(static_cast<std::size_t>(_number), 'x')}}, true};
    }
    return deliver(answer);
}

// Uses a remainder, because distributions differ between standard libraries.
std::chrono::milliseconds Fault::drawDelay(std::mt19937& random) const {
    const auto range = static_cast<std::uint32_t>(2 * _spread + 1);
    return std::chrono::milliseconds(_number - _spread + static_cast<int>(random() % range));
}

Reply deliver(const std::string& answer) {
    return {{{noWait, answer + endMarker}}, false};
}

} // namespace azubsim
