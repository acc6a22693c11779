#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace app::svg {

struct XmlAttribute {
    std::string name; ///< with the prefix `xlink:` or `xml:` for those two namespaces
    std::string value;
};

/// An element of the document, with what the importer uses of it.
struct XmlElement {
    std::string name; ///< without prefix; empty for elements of foreign namespaces
    int line = 0;
    std::vector<XmlAttribute> attributes; ///< those of foreign namespaces are left out
    std::vector<XmlElement> children;
    std::string text; ///< of `style` elements only

    const std::string* attribute(std::string_view attributeName) const; ///< null when there is none
};

/// Limits that keep a hostile document from using unbounded time or memory.
struct XmlLimits {
    std::size_t bytes = 32u << 20;
    int depth = 200;
    int elements = 500'000;
    int attributes = 200; ///< of one element
};

/// The document can't be read. `line` is 0 when the error has no line.
struct DocumentError : std::runtime_error {
    DocumentError(int atLine, const std::string& message)
        : std::runtime_error(message)
        , line(atLine)
    {
    }
    int line;
};

/// Reads a document whose root is an `svg` element. Nothing outside `text` is ever loaded: external
/// subsets and entities are not followed, and of a document type's own declarations only short entities of
/// plain text are accepted. Throws `DocumentError`.
XmlElement parseXml(std::string_view text, const XmlLimits& limits = {});

} // namespace app::svg
