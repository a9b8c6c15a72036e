#pragma once

#include <tinyxml.h>

#include <string>
#include <type_traits>
#include <utility>

#include "utilities/TypeList.h"
#include "utilities/xmlserializer/Envelope.h"
#include "utilities/xmlserializer/ResultTrait.h"
#include "utilities/xmlserializer/TraitChecks.h"
#include "utilities/xmlserializer/XmlTraitSerializer.h"

namespace velta::utilities::xmlserializer {

namespace detail {

/// Finds the trait for a type in a list of traits. Does not compile if there is none.
template <typename Traits, typename Type>
struct TraitOf
    : std::conditional_t<std::is_same<typename Traits::Head::Type, Type>::value,
                         TypeList<typename Traits::Head>, TraitOf<typename Traits::Tail, Type>> {};

template <typename Type>
struct TraitOf<utilities::detail::TypeNull, Type> {
    static_assert(!std::is_same<Type, Type>::value, "this type has no trait in the list");
};

} // namespace detail

/// Writes a typed request as a document, and reads a document into a typed answer. Immutable; any
/// thread. `Traits` is a type list with a record trait for each request and answer.
template <typename Traits>
class XmlSerializer {
public:
    /// Both must be plain text: nothing in them is escaped.
    XmlSerializer(std::string rootTag_, std::string version_)
        : rootTag(std::move(rootTag_)), version(std::move(version_)) {}

    /// After a failure `text` is empty; the code is from the serializer of the request's trait.
    template <typename Request>
    Result serialize(const Request& request, std::string& text) const {
        using Trait = typename detail::TraitOf<Traits, Request>::Head;
        if constexpr (detail::checkWriting(Trait{})) {
            return write<Trait>(request, text);
        }
    }

    /// After a failure `answer` may be partly filled: fields read before the failing one are set.
    template <typename Answer>
    Result deserialize(const std::string& text, Answer& answer) const {
        using Trait = typename detail::TraitOf<Traits, Answer>::Head;
        if constexpr (detail::checkReading(Trait{})) {
            return read<Trait>(text, answer);
        }
    }

private:
    template <typename Trait>
    Result write(const typename Trait::Type& request, std::string& text) const {
        text.clear();
        TiXmlElement command(Trait::tag);
        Result result = XmlTraitSerializer<Trait>::toXml(request, command);
        if (result.isFailure()) {
            return detail::addWritingContext(std::move(result), Trait::tag);
        }
        text = detail::printDocument(rootTag, version, command);
        return ResultCode::Success;
    }

    template <typename Trait>
    Result read(const std::string& text, typename Trait::Type& answer) const {
        if (detail::readPlainDocument<Trait>(text, rootTag, version, answer)) {
            return ResultCode::Success;
        }
        TiXmlDocument document;
        const TiXmlElement* command = nullptr;
        Result result = detail::parseDocument(text, rootTag, version, document, command);
        if (result.isFailure()) {
            return result;
        }
        return XmlTraitSerializer<Trait>::fromXml(*command, answer, Trait::tag);
    }

    std::string rootTag;
    std::string version;
};

} // namespace velta::utilities::xmlserializer
