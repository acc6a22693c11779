#pragma once

#include <vxr/platform/graphics/Context.h>

#include <functional>
#include <string>

namespace vxr {

/// The boxes of a PDF page, in points. Empty boxes are omitted.
struct PDFPageBoxes {
    Rect media;
    Rect crop, bleed, trim, art;
};

/// A PDF document. Vectors stay vectors; a shadow becomes one soft mask. Content on a page cannot be removed
/// again: clearing draws nothing, and copying draws over what lies below.
class VXR_EXPORT DocumentContext : public Context {
public:
    using Write = std::function<bool(const unsigned char* data, std::size_t size)>;

    /// The document appears under `path` when it is closed, at the latest by the destructor; until then an
    /// existing file stays as it is. Throws `GenericException` with the reason if the file cannot be created.
    static std::shared_ptr<DocumentContext> createWithFile(const std::string& path);
    static std::shared_ptr<DocumentContext> createWithWriter(Write write);

    /// Starts a page with a fresh state. The media box's lower left corner becomes the origin; the other
    /// boxes keep their position on the media. Nothing is drawn outside of pages. Throws
    /// `InvalidArgumentException` if the media box is empty.
    virtual void beginPage(const PDFPageBoxes&) = 0;
    virtual void endPage() = 0;
    /// Ends the page and writes the document. Throws `GenericException` if writing fails. Later calls do
    /// nothing.
    virtual void close() = 0;
    /// Why placed pages are missing from the closed document; empty if none are.
    virtual const std::string& placingFailure() const = 0;
};

} // namespace vxr
