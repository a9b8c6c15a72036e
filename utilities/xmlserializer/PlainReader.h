#pragma once

#include "utilities/TypeList.h"
#include "utilities/serializer/NamedTextTrait.h"
#include "utilities/xmlserializer/PlainCursor.h"

namespace velta::utilities::xmlserializer::detail {

/// Reads the value of a trait without a tree: building one is most of the cost of reading an
/// answer. Takes only documents in plain form: as the engine prints them, with children in the
/// trait's order, and without comments, entities, or white space between elements. This
/// template is for records.
///
/// `read` returns false for all other documents, valid or not; TinyXML must then read them. The
/// value may be partly filled. When `read` succeeds, TinyXML would give the same value; only the
/// message that it would add to the success is missing, and a success never shows its message.
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
