#pragma once

#include <vxr/platform/graphics/Context.h>

#include <functional>
#include <string>

namespace vxr {

/// The boxes of a PDF page, in points. Empty boxes are left out.
struct PDFPageBoxes {
    Rect media;
    Rect crop, bleed, trim, art;
};

/// A PDF document. Vectors stay vectors; a shadow is one soft mask beside them. What is on the page can't
/// be taken away again: there clearing draws nothing, and a copy is drawn over what lies below it.
class VXR_EXPORT DocumentContext : public Context {
public:
    using Write = std::function<bool(const unsigned char* data, std::size_t size)>;

    /// The document appears under `path` when it is closed, which the destructor does; until then an old file
    /// stays as it is. Throws `GenericException` with the reason when no file can be made there.
    static std::shared_ptr<DocumentContext> createWithFile(const std::string& path);
    static std::shared_ptr<DocumentContext> createWithWriter(Write write);

    /// Starts a page with a fresh state; the media box's lower left corner becomes the origin's place, and
    /// the other boxes keep theirs on the media. Nothing is drawn outside of pages. Throws
    /// `InvalidArgumentException` for a media box without an area.
    virtual void beginPage(const PDFPageBoxes&) = 0;
    virtual void endPage() = 0;
    /// Ends the page and writes the document. Throws `GenericException` when writing failed; later calls do
    /// nothing.
    virtual void close() = 0;
    /// Why pages that were placed are missing from the closed document; empty when none is.
    virtual const std::string& placingFailure() const = 0;
};

} // namespace vxr
