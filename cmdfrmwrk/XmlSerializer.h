#pragma once

#include <string>

#include "utilities/xmlserializer/XmlSerializer.h"

namespace velta::zub::cmdfrmwrk {

/// The serializer for the engine's protocol: root element "AZUB", version "0.1.0".
template <typename Traits>
class XmlSerializer : public utilities::xmlserializer::XmlSerializer<Traits> {
public:
    XmlSerializer() : utilities::xmlserializer::XmlSerializer<Traits>("AZUB", versionText()) {}

private:
    static const std::string& versionText() {
        constexpr unsigned int majorVersion = 0;
        constexpr unsigned int minorVersion = 1;
        constexpr unsigned int patchVersion = 0;
        static const std::string text = std::to_string(majorVersion) + '.' +
                                        std::to_string(minorVersion) + '.' +
                                        std::to_string(patchVersion);
        return text;
    }
};

} // namespace velta::zub::cmdfrmwrk
