#include "utilities/xmlserializer/Envelope.h"

#include "utilities/xmlserializer/DocumentLimits.h"

namespace velta::utilities::xmlserializer::detail {

namespace {

// By default TinyXML trims and folds white space; then a number with a blank beside it would be
// accepted, and a message would not arrive as it was sent. The switch is global to TinyXML, of
// which this library has a copy of its own, and is set before any thread can parse.
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
        // Nobody asks for lines and columns, and counting them takes another pass.
        document.SetTabSize(0);
        // Parser errors are not looked at: what tree there is decides.
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
