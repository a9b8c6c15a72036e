#include "tools/azubsim/Fault.h"

#include <algorithm>

#include "tools/azubsim/Words.h"

namespace azubsim {

namespace {

using Kind = Fault::Kind;

constexpr int maxDelayMs = 3600000;

// The elements that an answer has.
bool isElement(const std::string& name) {
    for (const char* const known :
         {"LipSyncNtpTimestamps", "capture_timestamp", "rendering_timestamp", "receiving_timestamp",
          "jitter_buffer_depth", "Result", "ErrorCode", "Message"}) {
        if (name == known) {
            return true;
        }
    }
    return false;
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
        {Kind::Error, "error", "CODE [MESSAGE]", "the engine's verdict is this code and message"},
        {Kind::Version, "version", "TEXT", "the document has another version"},
        {Kind::Element, "element", "NAME", "the command element has another name"},
        {Kind::Missing, "missing", "NAME", "every element of this name is left out"},
        {Kind::Number, "number", "TEXT", "every number is this text"},
        {Kind::Cut, "cut", "", "the document ends in its middle; the end marker follows"},
        {Kind::CloseBefore, "close-before", "", "the connection is closed without an answer"},
        {Kind::CloseMiddle, "close-middle", "", "it is closed in the middle of the answer"},
        {Kind::Split, "split", "", "every byte comes in a write of its own"},
        {Kind::Double, "double", "", "the answer comes twice in one write"},
        {Kind::Zero, "zero", "", "a zero byte stands in the middle of the answer"},
        {Kind::Silence, "silence", "", "nothing is answered, the connection stays open"},
        {Kind::Delay, "delay", "MS", "the answer comes so many milliseconds later"},
        {Kind::Flood, "flood", "", "bytes without an end marker; then the connection is closed"},
        {Kind::Reset, "reset", "", "the connection is reset"},
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
            error = "fault '" + name + "' takes " +
                    (takesArgument ? description.argument : "no argument");
            return false;
        }
        fault._kind = description.kind;
        fault._text = text;
        return fault.setArgument(argument, error);
    }
    error = "there is no fault '" + name + "'";
    return false;
}

bool Fault::setArgument(const std::string& argument, std::string& error) {
    _argument = argument;
    if (_kind == Kind::Error) {
        const Words words(argument);
        _argument = words.rest;
        error = "an error code is a decimal number of 32 bits";
        return parseNumber(words.first, _number);
    }
    if (_kind == Kind::Delay) {
        error = "a delay is 0 to " + std::to_string(maxDelayMs) + " ms";
        return parseNumber(argument, _number) && _number >= 0 && _number <= maxDelayMs;
    }
    error = "no answer has an element '" + argument + "'";
    return _kind != Kind::Missing || isElement(argument);
}

void Fault::spoil(Verdict& verdict) const {
    if (_kind == Kind::Error) {
        verdict = {_number, _argument};
    }
}

void Fault::spoil(Document& document) const {
    switch (_kind) {
        case Kind::Version: document.version = _argument; break;
        case Kind::Element: document.command.name = _argument; break;
        case Kind::Missing: remove(document.command, _argument); break;
        case Kind::Number: setNumbers(document.command, _argument); break;
        default: break;
    }
}

Reply Fault::deliver(const std::string& document, std::size_t floodBytes) const {
    const std::size_t middle = document.size() / 2;
    Reply reply = azubsim::deliver(document);
    std::string& bytes = reply.pieces.front().bytes;
    switch (_kind) {
        case Kind::Cut: bytes = document.substr(0, middle) + endMarker; break;
        case Kind::CloseBefore: reply = {{}, Reply::End::Close}; break;
        case Kind::CloseMiddle:
            bytes.resize(middle);
            reply.end = Reply::End::Close;
            break;
        case Kind::Split: reply.pieces = split(std::string(bytes)); break;
        case Kind::Double: bytes += bytes; break;
        case Kind::Zero: bytes.insert(middle, 1, '\0'); break;
        case Kind::Silence: reply.pieces.clear(); break;
        case Kind::Delay: reply.pieces.front().wait = std::chrono::milliseconds(_number); break;
        case Kind::Flood:
            bytes.assign(floodBytes, 'x');
            reply.end = Reply::End::Close;
            break;
        case Kind::Reset: reply = {{}, Reply::End::Reset}; break;
        default: break;
    }
    return reply;
}

Reply deliver(const std::string& document) {
    return {{{std::chrono::microseconds(0), document + endMarker}}, Reply::End::Open};
}

} // namespace azubsim
