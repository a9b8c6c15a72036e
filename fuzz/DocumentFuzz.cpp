// Reads a document as both kinds of answer. Compares the plain reader with TinyXML, and the
// document limits with the tree that TinyXML builds.

#include <tinyxml.h>

#include <algorithm>
#include <string>

#include "fuzz/Check.h"
#include "lipsync/SerializationTraits.h"
#include "utilities/xmlserializer/DocumentLimits.h"

namespace {

using namespace velta::utilities::xmlserializer;
using namespace velta::zub::lipsync;

constexpr std::size_t plenty = 1'000'000;

// If the plain reader accepts a document, TinyXML must read the same answer from it.
template <typename Trait, typename Same>
void comparePlain(const std::string& text, const Same& same) {
    typename Trait::Type plain;
    if (!detail::readPlainDocument<Trait>(text, "AZUB", "0.1.0", plain)) {
        return;
    }
    TiXmlDocument document;
    const TiXmlElement* command = nullptr;
    fuzz::check(detail::parseDocument(text, "AZUB", "0.1.0", document, command).isSuccess(),
                "a plain document parses");
    typename Trait::Type answer;
    fuzz::check(XmlTraitSerializer<Trait>::fromXml(*command, answer, Trait::tag).isSuccess(),
                "a plain document can be read from a tree");
    fuzz::check(plain.result.code == answer.result.code &&
                    plain.result.message == answer.result.message &&
                    plain.result.trailer == answer.result.trailer &&
                    plain.result.causes == answer.result.causes && same(plain, answer),
                "both readers give the same answer");
}

bool sameTimestamps(const GetAudioTs::Answer& a, const GetAudioTs::Answer& b) {
    return a.timestamps.audioCaptureTimestamp == b.timestamps.audioCaptureTimestamp &&
           a.timestamps.audioRenderingTimestamp == b.timestamps.audioRenderingTimestamp &&
           a.timestamps.audioReceivingTimestamp == b.timestamps.audioReceivingTimestamp &&
           a.timestamps.jbmCurrentDepth == b.timestamps.jbmCurrentDepth;
}

template <typename Answer>
void read(const std::string& text) {
    Answer answer;
    const Result result = Serializer().deserialize(text, answer);
    fuzz::check(result.isSuccess() == (result.format() == "Success"),
                "only a success reads Success");
    fuzz::check(
        result.isSuccess() || answer.result.isFailure() || answer.result.format() == "Success",
        "a successful verdict reads Success");
}

// The nesting and attributes of a tree.
detail::DocumentLimits measured(const TiXmlNode& node) {
    detail::DocumentLimits size{0, 0};
    for (const TiXmlNode* child = node.FirstChild(); child; child = child->NextSibling()) {
        const detail::DocumentLimits below = measured(*child);
        size.nesting = std::max(size.nesting, below.nesting);
        size.attributes = std::max(size.attributes, below.attributes);
    }
    if (const TiXmlElement* const element = node.ToElement()) {
        ++size.nesting;
        std::size_t own = 0;
        for (const TiXmlAttribute* a = element->FirstAttribute(); a; a = a->Next()) {
            ++own;
        }
        size.attributes = std::max(size.attributes, own);
    }
    return size;
}

void compareLimits(const std::string& text) {
    const std::string padded = text + std::string(detail::textPadding, '\0');
    TiXmlDocument document;
    document.Parse(padded.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
    const detail::DocumentLimits size = measured(document);
    // TinyXML stops at a duplicate attribute, but isWithin goes on counting.
    if (document.ErrorId() != TiXmlBase::TIXML_ERROR_PARSING_ELEMENT) {
        fuzz::check(detail::isWithin(size, padded), "a document is within its own size");
    }
    fuzz::check(size.nesting == 0 || !detail::isWithin({size.nesting - 1, plenty}, padded),
                "one level too many is refused");
    fuzz::check(size.attributes == 0 || !detail::isWithin({plenty, size.attributes - 1}, padded),
                "one attribute too many is refused");
}

} // namespace

int fuzzDocument(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    read<GetAudioTs::Answer>(text);
    read<SetAudioDelay::Answer>(text);
    comparePlain<SerializationTraitGetAudioTsAnswer>(text, sameTimestamps);
    comparePlain<SerializationTraitSetAudioDelayAnswer>(
        text, [](const auto&, const auto&) { return true; });
    compareLimits(text);
    return 0;
}
