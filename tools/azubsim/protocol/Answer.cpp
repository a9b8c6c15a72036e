#include "tools/azubsim/protocol/Answer.h"

#include <charconv>
#include <string_view>

#include "tools/azubsim/protocol/Document.h"
#include "tools/azubsim/protocol/Names.h"
#include "tools/common/Error.h"

namespace azubsim {

namespace {

pugi::xml_node child(pugi::xml_node parent, const char* name) {
    const pugi::xml_node found = parent.child(name);
    if (!found) {
        throw tools::Error(std::string("no ") + name);
    }
    return found;
}

// Decimal, also with a plus sign, or hexadecimal with "0x".
template <typename Number>
void parse(pugi::xml_node parent, const char* name, Number& number) {
    const std::string value = child(parent, name).child_value();
    std::string_view text = value;
    const bool isHex = text.substr(0, 2) == "0x";
    text.remove_prefix(isHex ? 2 : text.substr(0, 1) == "+" ? 1 : 0);
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number, isHex ? 16 : 10);
    if (error != std::errc() || rest != end) {
        throw tools::Error(std::string(name) + " is '" + value + "'");
    }
}

Timestamps parseTimestamps(pugi::xml_node element) {
    Timestamps timestamps;
    parse(element, names::capture, timestamps.capture);
    parse(element, names::rendering, timestamps.rendering);
    parse(element, names::receiving, timestamps.receiving);
    parse(element, names::jitterDepth, timestamps.jitterDepthMs);
    return timestamps;
}

} // namespace

Answer parseAnswer(const std::string& text) {
    pugi::xml_document document;
    Answer answer;
    const auto element = parseDocument(text, names::answerEnding, document, answer.command);
    if (kindOf(answer.command) == Kind::GetAudioTs) {
        answer.timestamps = parseTimestamps(child(element, names::timestamps));
    }
    const pugi::xml_node result = child(element, names::result);
    parse(result, names::code, answer.verdict.code);
    answer.verdict.message = child(result, names::message).child_value();
    return answer;
}

} // namespace azubsim
