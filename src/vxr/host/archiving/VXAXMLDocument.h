#pragma once

#include <vxr/host/archiving/VXAXMLNode.h>
#include <vxr/platform/base/Exceptions.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>

struct _xmlDoc;

namespace vxr {

/// Why a text is no document of ours. `what()` starts with the line when it is known: "line 12: …".
class VXR_EXPORT VXAXMLError : public InvalidArgumentException {
public:
    VXAXMLError(long line, const std::string& description);
    ~VXAXMLError() override;

    long line() const { return mLine; } ///< 0 when the trouble has no line

private:
    long mLine;
};

/// What a document may hold. Beyond that it is refused, in bounded time and memory.
struct VXAXMLLimits {
    std::size_t bytes = std::size_t(256) << 20;
    std::size_t elements = 8'000'000;
    std::size_t attributesOfOneElement = 256;
    std::size_t depth = 200;
    std::size_t textOfOneElement = std::size_t(4) << 20; ///< bytes
};

/// An XML document in memory. Document types are refused, and with them entities and everything that could
/// be fetched from elsewhere.
class VXR_EXPORT VXAXMLDocument {
public:
    /// Throws `VXAXMLError` for text that is not well-formed, has a document type or exceeds a limit.
    static std::unique_ptr<VXAXMLDocument> parse(std::span<const std::byte> text, const VXAXMLLimits& = {});
    /// A new document whose root is an empty element.
    VXAXMLDocument(const VXAXMLNamespace& ns, const char* rootName);
    ~VXAXMLDocument();
    VXAXMLDocument(const VXAXMLDocument&) = delete;
    VXAXMLDocument& operator=(const VXAXMLDocument&) = delete;

    VXAXMLNode* root() const;
    /// UTF-8, indented by two spaces; the same document gives the same bytes.
    std::string serialize() const;
    /// The same with more children of `parent`, which has none: `appendNext` appends one or more to it each
    /// time, until it answers that there are no more. They are taken away once they are written, so that a
    /// long document needs no more memory than its text.
    std::string serializeWithChildren(VXAXMLNode* parent, const std::function<bool(VXAXMLNode*)>& appendNext);

private:
    explicit VXAXMLDocument(_xmlDoc* document)
        : mDocument(document)
    {
    }

    _xmlDoc* mDocument;
};

} // namespace vxr
