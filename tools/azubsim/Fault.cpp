#include "tools/azubsim/Fault.h"

#include <algorithm>

#include "tools/azubsim/Words.h"

namespace azubsim {

namespace {

using Kind = Fault::Kind;

constexpr int maxDelayMs = 3600000;
constexpr std::chrono::microseconds noWait(0);

// What the fault "missing" can leave out.
constexpr const char* elementNames =
    "LipSyncNtpTimestamps capture_timestamp rendering_timestamp receiving_timestamp "
    "jitter_buffer_depth Result ErrorCode Message";

bool isElement(const std::string& name) {
    const std::string names = std::string(" ") + elementNames + ' ';
    return name.find(' ') == std::string::npos && names.find(' ' + name + ' ') != std::string::npos;
}

void remove(Element& element, const std::string& name) {
    auto& children = element.children;
    children.erase(std::remove_if(children.begin(), children.end(),
                                  [&](const Element& child) { return child.name == name; }),
                   children.end());
    for (Element& child : children) {
        remove(child, name);
    }
}

void setNumbers(Element& element, const std::string& text) {
    for (Element& child : element.children) {
        setNumbers(child, text);
    }
    if (element.children.empty() && element.name != "Message") {
        element.text = text;
    }
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
        {Kind::Delay, "delay", "MS", "send the answer MS milliseconds late"},
        {Kind::Flood, "flood", "", "send bytes without an end marker, then close"},
        {Kind::Reset, "reset", "", "reset the connection"},
    };
    return all;
}

bool Fault::parse(const std::string& text, Fault& fault, std::string& error) {
    const Words words(text);
    const std::string& name = words.first;
    const std::string& argument = words.rest;
    for (const Description& description : descriptions()) {
        if (name != description.name) {
            continue;
        }
        const bool takesArgument = *description.argument != '\0';
        if (takesArgument == argument.empty()) {
            error = "fault '" + name + "' " +
                    (takesArgument ? std::string("needs an argument: ") + description.argument
                                   : "takes no argument, but got '" + argument + "'");
            return false;
        }
        fault._kind = description.kind;
        fault._text = text;
        return fault.setArgument(argument, error);
    }
    error = "unknown fault '" + name + "'";
    return false;
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
        error = "delay '" + argument + "' is not a number of ms from 0 to " +
                std::to_string(maxDelayMs);
        return parseNumber(argument, _number) && _number >= 0 && _number <= maxDelayMs;
    }
    error = "unknown element '" + argument + "'; answers have " + elementNames;
    return _kind != Kind::Missing || isElement(argument);
}

void Fault::spoil(Verdict& verdict) const {
    if (_kind == Kind::Error) {
        verdict = {_number, _argument};
    }
}

Reply Fault::answer(Document document, std::size_t floodBytes) const {
    const std::string text = document.print();
    const std::string firstHalf = text.substr(0, text.size() / 2);
    const std::string secondHalf = text.substr(firstHalf.size()) + endMarker;
    // There is no default, so the compiler warns about a kind that is forgotten here.
    switch (_kind) {
        case Kind::Error: break; // The verdict is in the document.
        case Kind::Version: document.version = _argument; break;
        case Kind::Element: document.command.name = _argument; break;
        case Kind::Missing: remove(document.command, _argument); break;
        case Kind::Number: setNumbers(document.command, _argument); break;
        case Kind::Cut: return deliver(firstHalf);
        case Kind::CloseBefore: return {{}, Reply::End::Close};
        case Kind::CloseMiddle: return {{{noWait, firstHalf}}, Reply::End::Close};
        case Kind::Split: return {split(text + endMarker), Reply::End::Open};
        case Kind::Double: return deliver(text + endMarker + text);
        case Kind::Zero: return {{{noWait, firstHalf + '\0' + secondHalf}}, Reply::End::Open};
        case Kind::Silence: return {{}, Reply::End::Open};
        case Kind::Delay:
            return {{{std::chrono::milliseconds(_number), text + endMarker}}, Reply::End::Open};
        case Kind::Flood: return {{{noWait, std::string(floodBytes, 'x')}}, Reply::End::Close};
        case Kind::Reset: return {{}, Reply::End::Reset};
    }
    return deliver(document.print());
}

Reply deliver(const std::string& document) {
    return {{{noWait, document + endMarker}}, Reply::End::Open};
}

} // namespace azubsim
