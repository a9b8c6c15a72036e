#pragma once

#include <string>

#include "utilities/serializer/Convertor.h"
#include "utilities/xmlserializer/XmlSerializer.h"

namespace velta::zub::cmdfrmwrk {

/// The serializer of the engine's protocol: root element "AZUB", version "0.1.0".
template <typename Traits>
class XmlSerializer : public utilities::xmlserializer::XmlSerializer<Traits> {
public:
    XmlSerializer() : utilities::xmlserializer::XmlSerializer<Traits>("AZUB", versionText()) {}

private:
    static std::string versionText() {
        constexpr unsigned int majorVersion = 0;
        constexpr unsigned int minorVersion = 1;
        constexpr unsigned int patchVersion = 0;
        std::string text;
        for (const unsigned int number : {majorVersion, minorVersion, patchVersion}) {
            text += text.empty() ? "" : ".";
            utilities::serializer::Convertor<unsigned int>::append(number, text);
        }
        return text;
    }
};

} // namespace velta::zub::cmdfrmwrk
