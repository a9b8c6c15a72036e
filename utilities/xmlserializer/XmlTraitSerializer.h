#pragma once

#include <tinyxml.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "utilities/TypeList.h"
#include "utilities/result/Digits.h"
#include "utilities/serializer/NamedTextTrait.h"
#include "utilities/serializer/TextTrait.h"
#include "utilities/xmlserializer/ResultTrait.h"
#include "utilities/xmlserializer/XmlNodes.h"

namespace velta::utilities::xmlserializer {

template <typename Trait>
struct XmlTraitSerializer;

namespace detail {

/// Creates an element, which the caller owns, and lets `fill` add its content. After a failure
/// `node` is unchanged.
template <typename Fill>
Result writeElement(const char* tag, TiXmlNode*& node, const Fill& fill) {
    auto element = std::make_unique<TiXmlElement>(tag);
    Result result = fill(*element);
    if (result.isFailure()) {
        return addWritingContext(std::move(result), tag);
    }
    node = element.release();
    return result;
}

/// Writes a value into a new last child of `element`.
template <typename Trait>
Result appendNode(const typename Trait::Type& value, TiXmlNode& element) {
    TiXmlNode* node = nullptr;
    Result result = XmlTraitSerializer<Trait>::toXml(value, node);
    if (result.isSuccess()) {
        element.LinkEndChild(node);
    }
    return result;
}

/// Appends a value that could not be written to a failure: an integer or an enumerator as a number.
template <typename T>
void appendValue(Result& failure, const T& value) {
    if constexpr (std::is_enum_v<T>) {
        appendValue(failure, static_cast<std::underlying_type_t<T>>(value));
    } else if constexpr (std::is_integral_v<T>) {
        failure.message += result::Digits(+value); // A bool becomes an int.
    } else {
        failure << value;
    }
}

/// Finds the node inside an element that holds the value of a trait. On failure `child` is null.
template <typename Trait>
struct ChildAccess {
    static Result get(const TiXmlNode& parent, const TiXmlNode*& child) {
        return findElement(parent, Trait::tag, child);
    }
};

template <typename T, typename Convertor>
struct ChildAccess<serializer::TextTrait<T, Convertor>> {
    static Result get(const TiXmlNode& parent, const TiXmlNode*& child) {
        return findText(parent, child);
    }
};

/// Writes or reads the children of a record in list order and stops at the first failure.
template <typename Record, typename Children>
struct SerializerChildList {
    /// Adds one new node for each child to `element`.
    static Result toXml(const Record& record, TiXmlNode& element) {
        return forEachChild(
            [&](auto child) { return writeChild<decltype(child)>(record, element); });
    }

    /// After a failure `record` holds the children that were read before the failing one.
    static Result fromXml(const TiXmlNode& element, Record& record) {
        return forEachChild(
            [&](auto child) { return readChild<decltype(child)>(element, record); });
    }

private:
    template <typename Visit>
    static Result forEachChild(const Visit& visit) {
        Result result = ResultCode::Success;
        visitAll(Children{}, [&](auto child) {
            result = visit(child);
            return result.isSuccess();
        });
        return result;
    }

    template <typename Child>
    static Result writeChild(const Record& record, TiXmlNode& element) {
        return appendNode<typename Child::Trait>(Child::get(record), element);
    }

    template <typename Child>
    static Result readChild(const TiXmlNode& element, Record& record) {
        using Trait = typename Child::Trait;
        const TiXmlNode* node = nullptr;
        Result result = ChildAccess<Trait>::get(element, node);
        if (result.isFailure()) {
            return result;
        }
        auto value = Trait::initialValue();
        result = XmlTraitSerializer<Trait>::fromXml(*node, value, Trait::tag);
        if (result.isSuccess()) {
            Child::set(record, value);
        }
        return result;
    }
};

} // namespace detail

/// Converts the value of a trait to XML and back. This template is for records; the specialisations
/// are for the other kinds of traits.
template <typename Trait>
struct XmlTraitSerializer {
    using Record = typename Trait::Type;
    using Children = detail::SerializerChildList<Record, typename Trait::Children>;

    /// Adds the children to `element`, which already has its name.
    static Result toXml(const Record& record, TiXmlNode& element) {
        return Children::toXml(record, element);
    }

    /// Creates an element with the children, which the caller owns. After a failure `node` is
    /// unchanged.
    static Result toXml(const Record& record, TiXmlNode*& node) {
        return detail::writeElement(Trait::tag, node,
                                    [&](TiXmlNode& element) { return toXml(record, element); });
    }

    /// Reads an element that must be named `tag`. After a failure `record` holds the children
    /// that were read before the failing one.
    static Result fromXml(const TiXmlNode& element, Record& record, const char* tag) {
        Result name = detail::checkName(element, tag);
        if (name.isFailure()) {
            return name;
        }
        return detail::addReadingContext(Children::fromXml(element, record), tag);
    }
};

template <typename T, typename Convertor>
struct XmlTraitSerializer<serializer::TextTrait<T, Convertor>> {
    /// Creates a text node, which the caller owns. After a failure `node` is unchanged.
    static Result toXml(const T& value, TiXmlNode*& node) {
        std::string text;
        if (!Convertor::toString(value, text)) {
            Result failure = ResultCode::ConversionFailed;
            failure << "Unable to convert \"";
            detail::appendValue(failure, value);
            failure << "\" to string.";
            return failure;
        }
        node = new TiXmlText(text.c_str());
        return ResultCode::Success;
    }

    /// After a failure `value` is unchanged.
    static Result fromXml(const TiXmlNode& node, T& value) {
        if (node.ToText() == nullptr) {
            return Result(ResultCode::UnexpectedNodeType) << "Expected an xml text node";
        }
        if (!Convertor::fromString(node.Value(), value)) {
            return Result(ResultCode::ConversionFailed)
                   << "Unable to convert from string \"" << node.Value() << "\".";
        }
        return ResultCode::Success;
    }
};

template <typename T, const char* const* elementName, bool emptyTextAllowed, typename Convertor>
struct XmlTraitSerializer<serializer::NamedTextTrait<T, elementName, emptyTextAllowed, Convertor>> {
    using Text = serializer::TextTrait<T, Convertor>;

    /// Creates an element with a text node, which the caller owns. After a failure `node` is
    /// unchanged.
    static Result toXml(const T& value, TiXmlNode*& node) {
        return detail::writeElement(*elementName, node, [&](TiXmlNode& element) {
            return detail::appendNode<Text>(value, element);
        });
    }

    /// Reads an element that must be named `tag`. After a failure `value` is unchanged.
    static Result fromXml(const TiXmlNode& element, T& value, const char* tag) {
        Result name = detail::checkName(element, tag);
        if (name.isFailure()) {
            return name;
        }
        return detail::addReadingContext(readText(element, value), tag);
    }

private:
    static Result readText(const TiXmlNode& element, T& value) {
        const TiXmlNode* text = nullptr;
        Result found = detail::ChildAccess<Text>::get(element, text);
        if (text != nullptr) {
            return XmlTraitSerializer<Text>::fromXml(*text, value);
        }
        if (!emptyTextAllowed) {
            return found;
        }
        value = T{};
        return ResultCode::Success;
    }
};

} // namespace velta::utilities::xmlserializer
