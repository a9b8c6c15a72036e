#include "utilities/xmlserializer/Envelope.h"

#include "utilities/xmlserializer/DocumentLimits.h"

namespace velta::utilities::xmlserializer::detail {

namespace {

// By default TinyXML trims and folds white space: it would accept a number next to a space, and
// would change messages. The switch is global, so the library has a private copy of TinyXML and
// sets it on load, before any thread can parse.
const bool whiteSpaceIsKept = (TiXmlBase::SetCondenseWhiteSpace(false), true);

// What comes before and after the command, in the form that TinyXML and the engine print.
std::string frameStart(const std::string& rootTag, const std::string& version) {
    return "<?xml version=\"1.0\" ?><" + rootTag + " version=\"" + version + "\">";
}

std::string frameEnd(const std::string& rootTag) {
    return "</" + rootTag + '>';
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
    return frameStart(rootTag, version) + printer.CStr() + frameEnd(rootTag);
}

bool skipFrameStart(PlainCursor& document, const std::string& rootTag, const std::string& version) {
    return isPlain(version) && document.skip(frameStart(rootTag, version));
}

bool skipFrameEnd(PlainCursor& document, const std::string& rootTag) {
    return document.skip(frameEnd(rootTag)) && document.isAtEnd();
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
