#include "utilities/xmlserializer/DocumentLimits.h"

#include <tinyxml.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

namespace velta::utilities::xmlserializer::detail {

namespace {

// Gives access to functions that TinyXML's own parser uses.
struct Reader : TiXmlUnknown {
    using TiXmlUnknown::IsAlpha;
    using TiXmlUnknown::ReadName;
    using TiXmlUnknown::SkipWhiteSpace;
    using TiXmlUnknown::StringEqual;
};

// Walks through a document as TinyXML does, but keeps a list of open elements where TinyXML
// recurses. Comments, text, attributes and the like are skipped by TinyXML's own functions: if we
// disagreed on where one ends, a document could slip past the limits.
class Walk {
public:
    Walk(const DocumentLimits& limits, const char* text) : _limits(limits), _at(text) {
        if (std::strncmp(text, "\xEF\xBB\xBF", 3) == 0) {
            _encoding = TIXML_ENCODING_UTF8;
        }
    }

    bool staysWithinLimits() {
        while (_isWithin && hasMore()) {
            step();
        }
        return _isWithin;
    }

private:
    bool hasMore() const { return _at != nullptr && *_at != '\0'; }

    // TinyXML stops at the first error.
    void stop() { _at = nullptr; }

    bool startsWith(const char* text, bool ignoreCase = false) const {
        return Reader::StringEqual(_at, text, ignoreCase, _encoding);
    }

    void skipWhiteSpace() { _at = Reader::SkipWhiteSpace(_at, _encoding); }

    void skip(TiXmlBase&& node) { _at = node.Parse(_at, nullptr, _encoding); }

    void step() {
        const char* const whiteSpace = _at;
        skipWhiteSpace();
        if (!hasMore()) {
            return;
        }
        if (*_at == '<') {
            readMarkup();
        } else if (_open.empty()) {
            stop();
        } else {
            _at = whiteSpace;
            skip(TiXmlText(""));
        }
    }

    void readMarkup() {
        if (!_open.empty() && startsWith("</")) {
            closeElement();
        } else if (startsWith("<?xml", true)) {
            readDeclaration();
        } else if (startsWith("<!--")) {
            skip(TiXmlComment());
        } else if (startsWith("<![CDATA[")) {
            skip(TiXmlText(""));
        } else if (_at[1] == '_' ||
                   Reader::IsAlpha(static_cast<unsigned char>(_at[1]), _encoding)) {
            openElement();
        } else {
            skip(TiXmlUnknown());
        }
    }

    // The first declaration sets the encoding, unless a byte order mark has set it.
    void readDeclaration() {
        TiXmlDeclaration declaration;
        _at = declaration.Parse(_at, nullptr, _encoding);
        if (_open.empty() && _encoding == TIXML_ENCODING_UNKNOWN) {
            _encoding =
                isUtf8(declaration.Encoding()) ? TIXML_ENCODING_UTF8 : TIXML_ENCODING_LEGACY;
        }
    }

    static bool isUtf8(const char* encoding) {
        return *encoding == '\0' ||
               Reader::StringEqual(encoding, "UTF-8", true, TIXML_ENCODING_UNKNOWN) ||
               Reader::StringEqual(encoding, "UTF8", true, TIXML_ENCODING_UNKNOWN);
    }

    void openElement() {
        if (_open.size() == _limits.nesting) {
            _isWithin = false;
            return;
        }
        ++_at;
        skipWhiteSpace();
        const char* const name = _at;
        TIXML_STRING copy;
        _at = Reader::ReadName(_at, &copy, _encoding);
        if (!hasMore()) {
            return;
        }
        const auto length = static_cast<std::size_t>(_at - name);
        readAttributes();
        if (!hasMore()) {
            return;
        }
        if (*_at == '>') {
            ++_at;
            _open.emplace_back(name, length);
        } else if (startsWith("/>")) {
            _at += 2;
        } else {
            stop();
        }
    }

    // Reads up to the end of the tag.
    void readAttributes() {
        std::size_t count = 0;
        for (skipWhiteSpace(); hasMore() && *_at != '/' && *_at != '>'; skipWhiteSpace()) {
            skip(TiXmlAttribute());
            if (hasMore() && ++count > _limits.attributes) {
                _isWithin = false;
                return;
            }
        }
    }

    void closeElement() {
        _at += 2;
        const std::string_view name = _open.back();
        if (std::strncmp(_at, name.data(), name.size()) != 0) {
            stop();
            return;
        }
        _at += name.size();
        skipWhiteSpace();
        if (hasMore() && *_at == '>') {
            ++_at;
            _open.pop_back();
        } else {
            stop();
        }
    }

    const DocumentLimits _limits;
    const char* _at;
    TiXmlEncoding _encoding = TIXML_ENCODING_UNKNOWN;
    std::vector<std::string_view> _open; // The names of the open elements, outermost first.
    bool _isWithin = true;
};

// Decides for all real answers without a walk: a text with few tags cannot nest deeply.
bool isSurelyWithin(const DocumentLimits& limits, const std::string& text) {
    const auto count = [&](char c) {
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), c));
    };
    return count('<') <= limits.nesting && count('=') <= limits.attributes;
}

} // namespace

bool isWithin(const DocumentLimits& limits, const std::string& text) {
    return isSurelyWithin(limits, text) || Walk(limits, text.c_str()).staysWithinLimits();
}

} // namespace velta::utilities::xmlserializer::detail
