#include "utilities/xmlserializer/XmlNodes.h"

#include <cstring>

namespace velta::utilities::xmlserializer::detail {

Result checkName(const TiXmlNode& element, const char* tag) {
    if (std::strcmp(element.Value(), tag) == 0) {
        return ResultCode::Success;
    }
    return Result(ResultCode::WrongXmlNode) << "Trying to deserialize the wrong element.Found \""
                                            << element.Value() << "\" expected " << tag;
}

Result findElement(const TiXmlNode& parent, const char* tag, const TiXmlNode*& child) {
    child = parent.FirstChildElement(tag);
    if (child != nullptr) {
        return ResultCode::Success;
    }
    return Result(ResultCode::ChildNotFound)
           << "No element node \"" << tag << "\" found in node \"" << parent.Value() << "\"";
}

Result findText(const TiXmlNode& parent, const TiXmlNode*& child) {
    child = parent.FirstChild();
    while (child != nullptr && child->ToText() == nullptr) {
        child = child->NextSibling();
    }
    if (child != nullptr) {
        return ResultCode::Success;
    }
    return Result(ResultCode::ChildNotFound)
           << "Node \"" << parent.Value() << "\" does not contain an expected text node child";
}

Result addReadingContext(Result outcome, const char* tag) {
    outcome << " (While desserializing \"" << tag << "\")";
    return outcome;
}

Result addWritingContext(Result failure, const char* tag) {
    failure << " (While serializing \"" << tag << "\")";
    return failure;
}

} // namespace velta::utilities::xmlserializer::detail
