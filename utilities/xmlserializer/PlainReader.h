#pragma once

#include <string_view>
#include <utility>

#include "utilities/TypeList.h"
#include "utilities/serializer/NamedTextTrait.h"
#include "utilities/xmlserializer/PlainCursor.h"
#include "utilities/xmlserializer/PlainText.h"

namespace velta::utilities::xmlserializer::detail {

/// Reads the value of a trait from a document in plain form: as the engine prints it, with the
/// children in the trait's order, without white space, comments and entities. No tree is built,
/// which is most of what reading an answer costs otherwise.
///
/// Returns false for everything else, right or wrong, and leaves it to TinyXML; the value may be
/// filled in part then. What is read here reads the same there, but for the text that a success
/// collects on its way through a tree, which nobody sees.
template <typename Trait>
struct PlainReader;

template <typename Record, typename Children>
struct PlainChildrenReader;

template <typename Record>
struct PlainChildrenReader<Record, utilities::detail::TypeNull> {
    static bool read(PlainCursor&, Record&) { return true; }
};

template <typename Record, typename Child, typename Others>
struct PlainChildrenReader<Record, TypeList<Child, Others>> {
    static bool read(PlainCursor& document, Record& record) {
        auto value = Child::Trait::initialValue();
        if (!PlainReader<typename Child::Trait>::read(document, value)) {
            return false;
        }
        Child::set(record, value);
        return PlainChildrenReader<Record, Others>::read(document, record);
    }
};

template <typename Trait>
struct PlainReader {
    using Record = typename Trait::Type;

    static bool read(PlainCursor& document, Record& record) {
        return document.skipStart(Trait::tag) &&
               PlainChildrenReader<Record, typename Trait::Children>::read(document, record) &&
               document.skipEnd(Trait::tag);
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

/// Reads a whole document. `answer` is filled completely or not at all.
template <typename Trait>
bool readPlainDocument(std::string_view text, std::string_view rootTag, std::string_view version,
                       typename Trait::Type& answer) {
    PlainCursor document(text);
    typename Trait::Type filled = answer;
    if (!isPlain(version) || !document.skip("<?xml version=\"1.0\" ?><") ||
        !document.skip(rootTag) || !document.skip(" version=\"") || !document.skip(version) ||
        !document.skip("\">") || !PlainReader<Trait>::read(document, filled) ||
        !document.skipEnd(rootTag) || !document.isAtEnd()) {
        return false;
    }
    answer = std::move(filled);
    return true;
}

} // namespace velta::utilities::xmlserializer::detail
