#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/EngineContext.h>
#include <vxr/platform/graphics/cairo/CairoEngine.h>
#include <vxr/platform/graphics/cairo/CairoFactory.h>
#include <vxr/platform/graphics/cairo/PDFPageBoxUpdate.h>
#include <vxr/platform/graphics/cairo/PlacedPages.h>

#include <cairo-pdf.h>

#include <new>
#include <utility>

namespace vxr {

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

/// The document is held whole until it is closed, since the pages' boxes are added at its end.
class PDFContext final : public EngineContext<DocumentContext> {
public:
    explicit PDFContext(Write);
    ~PDFContext() override;

    void beginPage(const PDFPageBoxes&) override;
    void endPage() override;
    void close() override;
    const std::string& placingFailure() const override { return mPlacingFailure; }

private:
    CairoEngine& paper() const { return static_cast<CairoEngine&>(engine()); }

    Write mWrite;
    std::string mBytes;
    CairoSurfacePtr mSurface;
    std::vector<PDFPageBoxes> mPages;
    PlacedPagesUser mUsesPlacedPages;
    std::string mPlacingFailure;
    bool mIsPageOpen = false;
    bool mIsClosed = false;
};

PDFContext::PDFContext(Write write)
    : EngineContext(std::make_unique<CairoEngine>(CairoEngine::Kind::Document, nullptr, 0, 0))
    , mWrite(std::move(write))
    , mSurface(cairo_pdf_surface_create_for_stream(append, &mBytes, 1, 1))
{
    if (cairo_surface_status(mSurface.get()) != CAIRO_STATUS_SUCCESS)
        throw std::bad_alloc();
    cairo_pdf_surface_restrict_to_version(mSurface.get(), CAIRO_PDF_VERSION_1_4);
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
    if (mIsClosed)
        return;
    endPage();
    const Size size = boxes.media.size;
    cairo_surface_t* surface = mSurface.get();
    cairo_pdf_surface_set_size(surface, size.width, size.height);
    paper().startSurface(
        CairoSurfacePtr(cairo_surface_reference(surface)), { 0, 0, size.width, size.height }, size.height);
    mPages.push_back(boxes);
    mIsPageOpen = true;
}

void PDFContext::endPage()
{
    if (!mIsPageOpen)
        return;
    paper().stopSurface();
    cairo_surface_show_page(mSurface.get());
    mIsPageOpen = false;
}

void PDFContext::close()
{
    if (mIsClosed)
        return;
    endPage();
    mIsClosed = true;
    cairo_surface_finish(mSurface.get());
    const cairo_status_t status = cairo_surface_status(mSurface.get());
    if (status != CAIRO_STATUS_SUCCESS)
        throw GenericException(std::string("Can't write the document: ") + cairo_status_to_string(status));
    appendPageBoxUpdate(mBytes, mPages);
    mPlacingFailure = putPlacedPagesInto(mBytes);
    const bool written
        = mWrite && mWrite(reinterpret_cast<const unsigned char*>(mBytes.data()), mBytes.size());
    mWrite = nullptr;
    mBytes = {};
    if (!written)
        throw GenericException("Can't write the document.");
}

} // namespace

std::shared_ptr<DocumentContext> makePDFContext(DocumentContext::Write write)
{
    return std::make_shared<PDFContext>(std::move(write));
}

} // namespace vxr
