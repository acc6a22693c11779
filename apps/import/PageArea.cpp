#include <apps/import/PageArea.h>

#include <apps/import/DecoderJobs.h>
#include <apps/import/PdfDocument.h>

#include <poppler.h>

#include <cmath>
#include <memory>

namespace vxr::importing {

namespace {

template <class Type, auto release> struct Releaser {
    void operator()(Type* object) const { release(object); }
};
using Document = std::unique_ptr<PopplerDocument, Releaser<PopplerDocument, g_object_unref>>;
using Page = std::unique_ptr<PopplerPage, Releaser<PopplerPage, g_object_unref>>;
using Surface = std::unique_ptr<cairo_surface_t, Releaser<cairo_surface_t, cairo_surface_destroy>>;
using Drawing = std::unique_ptr<cairo_t, Releaser<cairo_t, cairo_destroy>>;

constexpr std::int32_t mostAreaSide = 32767; ///< of a cairo surface

Document open(std::string_view pdf)
{
    const std::unique_ptr<GBytes, Releaser<GBytes, g_bytes_unref>> bytes(
        g_bytes_new_static(pdf.data(), pdf.size()));
    GError* error = nullptr;
    Document document(poppler_document_new_from_bytes(bytes.get(), nullptr, &error));
    if (document)
        return document;
    const std::string reason = error ? error->message : "unknown";
    g_clear_error(&error);
    throw Refusal("The document can't be read: " + reason + ".");
}

Page firstPage(PopplerDocument* document)
{
    Page page(poppler_document_get_n_pages(document) > 0 ? poppler_document_get_page(document, 0) : nullptr);
    if (!page)
        throw Refusal("The document has no page.");
    return page;
}

/// A document stays open in the process that draws areas of it: the process is asked for no other one.
struct OpenDocument {
    explicit OpenDocument(const JobInput& input)
        // Poppler shows the crop box, turned as the page says; wanted is the media box as it lies.
        : plain(documentWithPlainBoxes(input))
        , document(open(plain.empty() ? input.text() : std::string_view(plain)))
        , page(firstPage(document.get()))
    {
    }

    std::string plain;
    Document document;
    Page page;
};

/// Whole numbers of 16.16 arithmetic lie well beyond any area that can be seen.
bool isPossible(const Request& request)
{
    return request.width > 0 && request.height > 0 && request.width <= mostAreaSide
        && request.height <= mostAreaSide && request.scaleX > 0 && request.scaleY > 0
        && std::isfinite(request.scaleX) && std::isfinite(request.scaleY) && std::abs(request.offsetX) <= 1
        && std::abs(request.offsetY) <= 1;
}

} // namespace

void drawSamplePage(std::string_view pdf)
{
    const Document document = open(pdf);
    const Page page = firstPage(document.get());
    const Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 9, 9));
    const Drawing drawing(cairo_create(surface.get()));
    poppler_page_render(page.get(), drawing.get());
}

void renderPageArea(const Request& request, const JobInput& input, JobOutput& output)
{
    if (!isPossible(request))
        throw Refusal("The area is impossible.");
    static const OpenDocument opened(input);
    const int stride = cairo_format_stride_for_width(CAIRO_FORMAT_ARGB32, request.width);
    auto* const pixels = reinterpret_cast<unsigned char*>(
        output.mapPayload(std::uint64_t(stride) * std::uint64_t(request.height)));
    const Surface surface(cairo_image_surface_create_for_data(
        pixels, CAIRO_FORMAT_ARGB32, request.width, request.height, stride));
    const Drawing drawing(cairo_create(surface.get()));
    cairo_translate(drawing.get(), request.offsetX - request.x, request.offsetY - request.y);
    cairo_scale(drawing.get(), request.scaleX, request.scaleY);
    poppler_page_render(opened.page.get(), drawing.get());
    cairo_surface_flush(surface.get());
    if (cairo_status(drawing.get()) == CAIRO_STATUS_NO_MEMORY)
        throw std::bad_alloc();
    if (cairo_status(drawing.get()) != CAIRO_STATUS_SUCCESS)
        throw Refusal("The page can't be drawn.");

    BitmapRecord& record = output.report.bitmap;
    record.source = { std::uint32_t(request.width), std::uint32_t(request.height), 3, 4, 8, 1, 0, 0,
        std::uint64_t(request.width) * 4 };
    record.pixels = record.source;
    record.pixels.isDrawable = 1;
    record.pixels.bytesPerRow = std::uint64_t(stride);
    record.orientation = record.frames = 1;
    std::string_view("pdf").copy(record.kind, sizeof record.kind - 1);
}

} // namespace vxr::importing
