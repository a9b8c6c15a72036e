#include "utilities/xmlserializer/XmlTraitSerializer.h"

#include <cstring>

namespace velta::utilities::xmlserializer::detail {

Result checkName(const TiXmlNode& element, const char* tag) {
    if (std::strcmp(element.Value(), tag) == 0) {
        return ResultCode::Success;
    }
    return Result(ResultCode::WrongXmlNode) << "Trying to deserialize the wrong element.Found \""
                                            << element.Value() << "\" expected " << tag;
}

Result whileDeserializing(Result outcome, const char* tag) {
    return outcome << " (While desserializing \"" << tag << "\")";
}

} // namespace velta::utilities::xmlserializer::detail
