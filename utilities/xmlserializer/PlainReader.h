#pragma once

#include "utilities/TypeList.h"
#include "utilities/serializer/NamedTextTrait.h"
#include "utilities/xmlserializer/PlainCursor.h"

namespace velta::utilities::xmlserializer::detail {

/// Reads the value of a trait from a document in plain form: as the engine prints it, with the
/// children in the trait's order, and without white space, comments and entities. No tree is built;
/// building one is most of what reading an answer costs otherwise. This is the form for records.
///
/// Returns false for everything else, right or wrong, which TinyXML must then read; the value may
/// be filled in part. A document that is read here reads the same through TinyXML. Only the text
/// that a success collects there is missing, and nobody sees that.
template <typename Trait>
struct PlainReader {
    using Record = typename Trait::Type;

    static bool read(PlainCursor& document, Record& record) {
        return document.skipStart(Trait::tag) && readChildren(document, record) &&
               document.skipEnd(Trait::tag);
    }

private:
    static bool readChildren(PlainCursor& document, Record& record) {
        return visitAll(typename Trait::Children{}, [&](auto child) {
            using Child = decltype(child);
            auto value = Child::Trait::initialValue();
            if (!PlainReader<typename Child::Trait>::read(document, value)) {
                return false;
            }
            Child::set(record, value);
            return true;
        });
    }
};

template <typename T, const char* const* elementName, bool emptyTextAllowed, typename Convertor>
struct PlainReader<serializer::NamedTextTrait<T, elementName, emptyTextAllowed, Convertor>> {
    static bool read(PlainCursor& document, T& value) {
        if (emptyTextAllowed && document.skipEmpty(*elementName)) {
            value = T{};
            return true;
        }
        std::string_view text;
        return document.skipStart(*elementName) && document.readText(text) &&
               Convertor::fromString(text, value) && document.skipEnd(*elementName);
    }
};

} // namespace velta::utilities::xmlserializer::detail
