#include <vxr/platform/graphics/cairo/CairoContext.h>

#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/graphics/Pattern.h>
#include <vxr/platform/graphics/cairo/CairoImpl.h>

#include <cassert>
#include <cstring>
#include <new>
#include <utility>

namespace vxr {

namespace {

constexpr int maxSide = 32767; ///< of a cairo image

void requireSides(int width, int height)
{
    if (width < 1 || height < 1 || width > maxSide || height > maxSide)
        throw InvalidArgumentException("A bitmap's sides lie between 1 and 32767.");
}

/// Within [0, 1]; 0 for what is not a number.
float unit(float alpha) { return alpha > 0 ? std::min(alpha, 1.0f) : 0; }

CairoSurfacePtr requireMemory(cairo_surface_t* surface)
{
    CairoSurfacePtr owned(surface);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS)
        throw std::bad_alloc();
    return owned;
}

} // namespace

std::shared_ptr<CairoContext> CairoContext::createBitmap(int width, int height)
{
    requireSides(width, height);
    auto surface = requireMemory(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    auto impl = std::make_unique<Impl>(Impl::Kind::Bitmap, std::move(surface), width, height);
    return Impl::makeContext(std::move(impl));
}

std::shared_ptr<CairoContext> CairoContext::createWithPixels(
    void* pixels, int width, int height, std::size_t bytesPerRow)
{
    requireSides(width, height);
    if (!pixels || bytesPerRow % 4 != 0 || bytesPerRow < 4 * static_cast<std::size_t>(width)
        || bytesPerRow > INT32_MAX)
        throw InvalidArgumentException("A bitmap's rows hold its pixels and are a multiple of 4 bytes long.");
    auto surface = requireMemory(cairo_image_surface_create_for_data(static_cast<unsigned char*>(pixels),
        CAIRO_FORMAT_ARGB32, width, height, static_cast<int>(bytesPerRow)));
    auto impl = std::make_unique<Impl>(Impl::Kind::Bitmap, std::move(surface), width, height);
    return Impl::makeContext(std::move(impl));
}

CairoContext::CairoContext(std::unique_ptr<Impl> impl)
    : mImpl(std::move(impl))
{
}

CairoContext::~CairoContext() = default;

const std::uint32_t* CairoContext::pixels() const
{
    return reinterpret_cast<const std::uint32_t*>(mImpl->pixels());
}

std::uint32_t* CairoContext::pixels()
{
    auto* rows = reinterpret_cast<std::uint32_t*>(mImpl->pixels());
    if (rows)
        mImpl->unlock(); // what the caller writes is seen
    return rows;
}

int CairoContext::width() const { return mImpl->pixelWidth; }

int CairoContext::height() const { return mImpl->pixelHeight; }

std::size_t CairoContext::bytesPerRow() const { return mImpl->bytesPerRow(); }

std::shared_ptr<const Image> CairoContext::makeImage() const
{
    const std::uint8_t* rows = mImpl->pixels();
    if (!rows)
        return nullptr;
    const ImageLayout layout { width(), height(), bytesPerRow(), AlphaFormat::PremultipliedFirst, true,
        nullptr };
    const std::size_t lastRow = 4 * static_cast<std::size_t>(width());
    const std::size_t size = bytesPerRow() * static_cast<std::size_t>(height() - 1) + lastRow;
    return Image::createWithCopy(layout, rows, size);
}

void CairoContext::saveState()
{
    mImpl->stack.push_back(mImpl->state);
    if (!mImpl->targets.empty())
        cairo_save(mImpl->cr());
}

void CairoContext::restoreState()
{
    auto& stack = mImpl->stack;
    const std::size_t floor = mImpl->targets.empty() ? 0 : mImpl->targets.back().stackDepth;
    if (stack.size() <= floor)
        return;
    mImpl->state = std::move(stack.back());
    stack.pop_back();
    if (!mImpl->targets.empty())
        cairo_restore(mImpl->cr());
}

std::size_t CairoContext::stateDepth() const { return mImpl->stack.size(); }

void CairoContext::unwindToDepth(std::size_t depth)
{
    while (mImpl->stack.size() > depth) {
        if (mImpl->isInLayer() && mImpl->targets.back().stackDepth == mImpl->stack.size())
            mImpl->releaseLayer(mImpl->leaveLayer());
        else
            restoreState();
    }
}

AffineTransform CairoContext::currentTransform() const { return mImpl->state.transform; }

AffineTransform CairoContext::baseTransform() const { return mImpl->base; }

void CairoContext::setBaseTransform(const AffineTransform& transform)
{
    mImpl->base = transform;
    mImpl->setTransform(transform);
}

void CairoContext::concatTransform(const AffineTransform& transform)
{
    mImpl->setTransform(concat(transform, mImpl->state.transform));
}

Rect CairoContext::clipBounds() const { return mImpl->clipBounds(); }

void CairoContext::clipToPath(const Path& path, WindingRule rule) { mImpl->clipToPath(path, rule); }

void CairoContext::clipToRect(const Rect& rect) { mImpl->clipToRect(rect); }

void CairoContext::fillPath(const Path& path, WindingRule rule) { mImpl->fillPath(path, rule); }

void CairoContext::strokePath(const Path& path, const LineStyle& style) { mImpl->strokePath(path, style); }

void CairoContext::fillRect(const Rect& rect) { mImpl->fillRect(rect); }

void CairoContext::clearRect(const Rect& rect) { mImpl->clearRect(rect); }

void CairoContext::setFillColor(const ColorValue& color) { mImpl->state.fill = { color.toRGBA(), nullptr }; }

void CairoContext::setStrokeColor(const ColorValue& color)
{
    mImpl->state.stroke = { color.toRGBA(), nullptr };
}

void CairoContext::setFillPattern(std::shared_ptr<const Pattern> pattern, float alpha)
{
    mImpl->state.fill = { { 0, 0, 0, unit(alpha) }, std::move(pattern) };
}

void CairoContext::setStrokePattern(std::shared_ptr<const Pattern> pattern, float alpha)
{
    mImpl->state.stroke = { { 0, 0, 0, unit(alpha) }, std::move(pattern) };
}

const LineStyle& CairoContext::lineStyle() const { return mImpl->state.line; }

void CairoContext::setLineStyle(const LineStyle& style) { mImpl->state.line = style; }

float CairoContext::flatness() const { return mImpl->state.flatness; }

void CairoContext::setFlatness(float devicePixels)
{
    mImpl->state.flatness = devicePixels > 0 ? devicePixels : Path::defaultFlatness;
}

void CairoContext::setAlpha(float alpha) { mImpl->state.alpha = unit(alpha); }

void CairoContext::setCompositeOperation(CompositeOperation operation) { mImpl->state.operation = operation; }

void CairoContext::setShouldAntialias(bool antialias) { mImpl->state.antialias = antialias; }

// The best that is allowed is always within reach.
void CairoContext::setInterpolationQualityRange(InterpolationQuality, InterpolationQuality most)
{
    mImpl->state.quality = most;
}

void CairoContext::setShadow(Size offset, float blur, const ColorValue& color)
{
    mImpl->state.shadow = { offset, blur > 0 ? blur : 0, color.toRGBA() };
}

void CairoContext::clearShadow() { mImpl->state.shadow = {}; }

void CairoContext::beginTransparencyLayer() { mImpl->beginLayer(); }

void CairoContext::endTransparencyLayer() { mImpl->endLayer(); }

void CairoContext::setLayerReach(const Rect& r)
{
    const double height = mImpl->deviceHeight;
    mImpl->state.layerReach = { r.minX(), height - r.maxY(), r.maxX(), height - r.minY() };
}

void CairoContext::drawImage(const Rect& rect, const Image& image) { mImpl->drawImage(rect, image); }

void CairoContext::drawShading(const Shading& shading) { mImpl->drawShading(shading); }

PixelAccess* CairoContext::pixelAccess() { return mImpl->kind == Impl::Kind::Bitmap ? mImpl.get() : nullptr; }

} // namespace vxr
