#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/cairo/CairoContext.h>
#include <vxr/platform/graphics/cairo/CairoImpl.h>
#include <vxr/platform/graphics/cairo/PDFPageBoxUpdate.h>

#include <cairo-pdf.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

namespace vxr {

/// The document while it is being written. It is held whole until it is closed, since the pages' boxes
/// are added at its end.
struct PDFContext::Document {
    Write write;
    std::string bytes;
    CairoSurfacePtr surface;
    std::vector<PDFPageBoxes> pages;
    bool isPageOpen = false;
    bool isClosed = false;
};

namespace {

cairo_status_t append(void* bytes, const unsigned char* data, unsigned int length)
try {
    static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
} catch (const std::bad_alloc&) {
    return CAIRO_STATUS_NO_MEMORY;
}

bool isPageSize(Size size)
{
    return size.width > 0 && size.height > 0 && std::isfinite(size.width) && std::isfinite(size.height);
}

} // namespace

PDFContext::PDFContext(std::unique_ptr<Impl> impl, Write write)
    : CairoContext(std::move(impl))
    , mDocument(std::make_unique<Document>())
{
    mDocument->write = std::move(write);
    mDocument->surface.reset(cairo_pdf_surface_create_for_stream(append, &mDocument->bytes, 1, 1));
    if (cairo_surface_status(mDocument->surface.get()) != CAIRO_STATUS_SUCCESS)
        throw std::bad_alloc();
    cairo_pdf_surface_restrict_to_version(mDocument->surface.get(), CAIRO_PDF_VERSION_1_4);
}

std::shared_ptr<PDFContext> PDFContext::createWithWriter(Write write)
{
    auto impl = std::make_unique<Impl>(Impl::Kind::Document, nullptr, 0, 0);
    return std::shared_ptr<PDFContext>(new PDFContext(std::move(impl), std::move(write)));
}

std::shared_ptr<PDFContext> PDFContext::createWithFile(const std::string& path)
{
    std::shared_ptr<std::FILE> file(std::fopen(path.c_str(), "wb"), [](std::FILE* opened) {
        if (opened)
            std::fclose(opened);
    });
    if (!file)
        throw GenericException("Can't create " + path + ": " + std::strerror(errno));
    return createWithWriter([file](const unsigned char* data, std::size_t size) {
        return std::fwrite(data, 1, size, file.get()) == size && std::fflush(file.get()) == 0;
    });
}

PDFContext::~PDFContext()
{
    try {
        close();
    } catch (const std::exception&) { // whoever wants to know has closed it before
    }
}

void PDFContext::beginPage(const PDFPageBoxes& boxes)
{
    if (!isPageSize(boxes.media.size))
        throw InvalidArgumentException("A page needs a media box with an area.");
    if (mDocument->isClosed)
        return;
    endPage();
    const Size size = boxes.media.size;
    cairo_surface_t* surface = mDocument->surface.get();
    cairo_pdf_surface_set_size(surface, size.width, size.height);
    impl().startSurface(
        CairoSurfacePtr(cairo_surface_reference(surface)), { 0, 0, size.width, size.height }, size.height);
    mDocument->pages.push_back(boxes);
    mDocument->isPageOpen = true;
}

void PDFContext::endPage()
{
    if (!mDocument->isPageOpen)
        return;
    impl().stopSurface();
    cairo_surface_show_page(mDocument->surface.get());
    mDocument->isPageOpen = false;
}

void PDFContext::close()
{
    if (mDocument->isClosed)
        return;
    endPage();
    mDocument->isClosed = true;
    cairo_surface_finish(mDocument->surface.get());
    const cairo_status_t status = cairo_surface_status(mDocument->surface.get());
    if (status != CAIRO_STATUS_SUCCESS)
        throw GenericException(std::string("Can't write the document: ") + cairo_status_to_string(status));
    std::string& bytes = mDocument->bytes;
    appendPageBoxUpdate(bytes, mDocument->pages);
    const bool written = mDocument->write
        && mDocument->write(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    mDocument->write = nullptr;
    bytes = {};
    if (!written)
        throw GenericException("Can't write the document.");
}

} // namespace vxr
