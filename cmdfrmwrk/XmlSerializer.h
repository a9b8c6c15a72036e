#pragma once

#include <string>

#include "utilities/xmlserializer/XmlSerializer.h"

namespace velta::zub::cmdfrmwrk {

/// The serializer of the engine's protocol: root element "AZUB", version "0.1.0".
template <typename Traits>
class XmlSerializer : public utilities::xmlserializer::XmlSerializer<Traits> {
public:
    XmlSerializer() : utilities::xmlserializer::XmlSerializer<Traits>("AZUB", versionText()) {}

private:
    static constexpr unsigned int major_ = 0;
    static constexpr unsigned int minor_ = 1;
    static constexpr unsigned int patch_ = 0;

    static std::string versionText() {
        return std::to_string(major_) + '.' + std::to_string(minor_) + '.' + std::to_string(patch_);
    }
};

} // namespace velta::zub::cmdfrmwrk
