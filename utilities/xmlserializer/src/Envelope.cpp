#include "utilities/xmlserializer/Envelope.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "utilities/xmlserializer/DocumentLimits.h"

namespace velta::utilities::xmlserializer::detail {

namespace {

// By default TinyXML trims and folds white space: it would accept a number next to a space, and
// would change messages. The switch is global, so the library has a private copy of TinyXML and
// sets it on load, before any thread can parse.
const bool whiteSpaceIsKept = (TiXmlBase::SetCondenseWhiteSpace(false), true);

// The text before the command, in the form that TinyXML and the engine print.
std::array<std::string_view, 5> frameStart(std::string_view rootTag, std::string_view version) {
    return {"<?xml version=\"1.0\" ?><", rootTag, " version=\"", version, "\">"};
}

Result failure() {
    return ResultCode::ConversionFailed;
}

} // namespace

std::string printDocument(const std::string& rootTag, const std::string& version,
                          const TiXmlElement& command) {
    TiXmlPrinter printer;
    printer.SetStreamPrinting();
    command.Accept(&printer);

    std::string text;
    for (const std::string_view piece : frameStart(rootTag, version)) {
        text += piece;
    }
    return text + printer.CStr() + "</" + rootTag + '>';
}

bool skipFrameStart(PlainCursor& document, const std::string& rootTag, const std::string& version) {
    const auto pieces = frameStart(rootTag, version);
    return isPlain(version) &&
           std::all_of(pieces.begin(), pieces.end(),
                       [&](std::string_view piece) { return document.skip(piece); });
}

bool skipFrameEnd(PlainCursor& document, const std::string& rootTag) {
    return document.skipEnd(rootTag) && document.isAtEnd();
}

Result parseDocument(const std::string& text, const std::string& rootTag,
                     const std::string& version, TiXmlDocument& document,
                     const TiXmlElement*& command) {
    command = nullptr;
    const std::string padded = text + std::string(textPadding, '\0');
    if (isWithin(answerLimits, padded)) {
        // Turn off row and column tracking: it takes another pass, and nothing uses it.
        document.SetTabSize(0);
        // Parser errors are ignored: whatever tree TinyXML has built is read.
        document.Parse(padded.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
    }
    const TiXmlElement* const root = document.FirstChildElement(rootTag.c_str());
    if (root == nullptr) {
        return failure() << "No '" << rootTag << "' root element found in xml data.";
    }
    const char* const attribute = root->Attribute("version");
    if (attribute == nullptr) {
        return failure() << "No version found in root node '" << rootTag;
    }
    if (version != attribute) {
        return failure() << "Version does not match; expect '" << version << "' got '" << attribute
                         << "'.";
    }
    if (root->NextSiblingElement() != nullptr) {
        return failure() << "No command tag found.";
    }
    command = root->FirstChildElement();
    if (command == nullptr) {
        return failure() << "No content under root element.";
    }
    return ResultCode::Success;
}

} // namespace velta::utilities::xmlserializer::detail
