#pragma once

#include <cstddef>
#include <string>
#include <type_traits>

#include "utilities/TypeList.h"
#include "utilities/serializer/TextTrait.h"
#include "utilities/xmlserializer/PlainText.h"

namespace velta::utilities::xmlserializer::detail {

/// Appends the value of a trait to a document, to the byte as TinyXML prints it, but without
/// building a tree to be printed. This is the form for records.
///
/// Returns false for what it leaves to TinyXML: text to be escaped, and values that cannot be
/// converted; the document may end in the middle then.
template <typename Trait>
struct PlainWriter;

template <typename Record, typename Children>
struct PlainChildrenWriter;

template <typename Record>
struct PlainChildrenWriter<Record, utilities::detail::TypeNull> {
    static bool write(const Record&, std::string&) { return true; }
};

template <typename Record, typename Child, typename Others>
struct PlainChildrenWriter<Record, TypeList<Child, Others>> {
    static bool write(const Record& record, std::string& document) {
        return PlainWriter<typename Child::Trait>::write(Child::get(record), document) &&
               PlainChildrenWriter<Record, Others>::write(record, document);
    }
};

template <typename Trait>
struct PlainWriter {
    using Children = typename Trait::Children;

    static bool write(const typename Trait::Type& record, std::string& document) {
        (document += '<') += Trait::tag;
        if (std::is_same<Children, utilities::detail::TypeNull>::value) {
            document += " />";
            return true;
        }
        document += '>';
        if (!PlainChildrenWriter<typename Trait::Type, Children>::write(record, document)) {
            return false;
        }
        ((document += "</") += Trait::tag) += '>';
        return true;
    }
};

template <typename T, typename Convertor>
struct PlainWriter<serializer::TextTrait<T, Convertor>> {
    static bool write(const T& value, std::string& document) {
        std::string text;
        if (!Convertor::toString(value, text) || !isPlain(text)) {
            return false;
        }
        document += text;
        return true;
    }
};

/// Writes a whole document. `text` is unspecified where this returns false.
template <typename Trait>
bool writePlainDocument(const typename Trait::Type& request, const std::string& rootTag,
                        const std::string& version, std::string& text) {
    constexpr std::size_t usualLength = 160;
    text.clear();
    text.reserve(usualLength);
    ((text += "<?xml version=\"1.0\" ?><") += rootTag) += " version=\"";
    (text += version) += "\">";
    if (!isPlain(version) || !PlainWriter<Trait>::write(request, text)) {
        return false;
    }
    ((text += "</") += rootTag) += '>';
    return true;
}

} // namespace velta::utilities::xmlserializer::detail
