#pragma once

#include <tinyxml.h>

#include "utilities/TypeList.h"
#include "utilities/xmlserializer/ChildAccess.h"
#include "utilities/xmlserializer/ResultTrait.h"

namespace velta::utilities::xmlserializer {

template <typename Trait>
struct XmlTraitSerializer;

namespace detail {

/// Walks the children of a record, in list order, up to the first that fails.
template <typename Record, typename Children>
struct SerializerChildList;

template <typename Record>
struct SerializerChildList<Record, utilities::detail::TypeNull> {
    static Result toXml(const Record&, TiXmlNode&) { return ResultCode::Success; }
    static Result fromXml(const TiXmlNode&, Record&) { return ResultCode::Success; }
};

template <typename Record, typename Child, typename Others>
struct SerializerChildList<Record, TypeList<Child, Others>> {
    using Trait = typename Child::Trait;

    /// Links one new node a child into `element`.
    static Result toXml(const Record& record, TiXmlNode& element) {
        TiXmlNode* node = nullptr;
        Result result = XmlTraitSerializer<Trait>::toXml(Child::get(record), node);
        if (result.isFailure()) {
            return result;
        }
        element.LinkEndChild(node);
        return SerializerChildList<Record, Others>::toXml(record, element);
    }

    /// Children read before the failing one are set in `record`.
    static Result fromXml(const TiXmlNode& element, Record& record) {
        const TiXmlNode* node = nullptr;
        Result result = ChildAccess<Trait>::get(element, node);
        if (result.isFailure()) {
            return result;
        }
        auto value = Trait::initialValue();
        result = XmlTraitSerializer<Trait>::fromXml(*node, value, Trait::tag);
        if (result.isFailure()) {
            return result;
        }
        Child::set(record, value);
        return SerializerChildList<Record, Others>::fromXml(element, record);
    }
};

} // namespace detail

} // namespace velta::utilities::xmlserializer
