#pragma once

#include <tinyxml.h>

#include "utilities/serializer/TextTrait.h"
#include "utilities/xmlserializer/ResultTrait.h"

namespace velta::utilities::xmlserializer::detail {

/// Finds the node inside `parent` that holds the value of a trait. On failure `child` is null.
template <typename Trait>
struct ChildAccess {
    static Result get(const TiXmlNode& parent, const TiXmlNode*& child) {
        child = parent.FirstChildElement(Trait::tag);
        if (child == nullptr) {
            return Result(ResultCode::ChildNotFound)
                   << "No element node \"" << Trait::tag << "\" found in node \"" << parent.Value()
                   << "\"";
        }
        return ResultCode::Success;
    }
};

template <typename T, typename Convertor>
struct ChildAccess<serializer::TextTrait<T, Convertor>> {
    static Result get(const TiXmlNode& parent, const TiXmlNode*& child) {
        child = parent.FirstChild();
        while (child != nullptr && child->ToText() == nullptr) {
            child = child->NextSibling();
        }
        if (child == nullptr) {
            return Result(ResultCode::ChildNotFound)
                   << "Node \"" << parent.Value()
                   << "\" does not contain an expected text node child";
        }
        return ResultCode::Success;
    }
};

} // namespace velta::utilities::xmlserializer::detail
