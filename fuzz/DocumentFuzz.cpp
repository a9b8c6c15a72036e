// A document as both answers, in plain form and from a tree, and the limits of documents compared
// with what TinyXML reads.

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

// A document that is read without a tree reads the same from a tree.
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
                "a plain document can be read");
    fuzz::check(plain.result.code == answer.result.code &&
                    plain.result.message == answer.result.message &&
                    plain.result.trailer == answer.result.trailer &&
                    plain.result.causes == answer.result.causes && same(plain, answer),
                "it reads the same");
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
    fuzz::check(result.isSuccess() == (result.format() == "Success"), "failures say so");
    fuzz::check(
        result.isSuccess() || answer.result.isFailure() || answer.result.format() == "Success",
        "the verdict has a text");
}

// The size that the structure really has.
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
    // TinyXML stops at an attribute that is named twice; there the limits count what follows.
    if (document.ErrorId() != TiXmlBase::TIXML_ERROR_PARSING_ELEMENT) {
        fuzz::check(detail::isWithin(size, padded), "what TinyXML reads is within its own size");
    }
    fuzz::check(size.nesting == 0 || !detail::isWithin({size.nesting - 1, plenty}, padded),
                "deeper nesting is noticed");
    fuzz::check(size.attributes == 0 || !detail::isWithin({plenty, size.attributes - 1}, padded),
                "more attributes are noticed");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    read<GetAudioTs::Answer>(text);
    read<SetAudioDelay::Answer>(text);
    comparePlain<SerializationTraitGetAudioTsAnswer>(text, sameTimestamps);
    comparePlain<SerializationTraitSetAudioDelayAnswer>(
        text, [](const auto&, const auto&) { return true; });
    compareLimits(text);
    return 0;
}
