#include <vxr/renderables/VXRReflectionRenderable.h>

#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/host/utility/VXUObjectFlusher.h>
#include <vxr/images/VXRBitmapRenderer.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/protocols/VXRCanvasRole.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vxr {

namespace {

constexpr float heightPart = 0.4f, mostHeight = 120;
constexpr float gap = 1;
constexpr float fadePower = 1.8f;
constexpr double finestOnPaper = 300.0 / 72;
constexpr double mostSide = 32767; ///< of a bitmap

/// Whole units, or 0 for what has none.
double wholeUnits(float length) { return length >= 1 && std::isfinite(length) ? std::trunc(length) : 0; }

/// The resolution that was asked for, or the finest at which a strip of that many units can be captured.
double possibleResolution(double resolution, double width, double height)
{
    const double largest
        = std::min(mostSide / width, std::sqrt(VXRReflectionRenderable::maxCapturePixels / (width * height)));
    return std::min(resolution, largest);
}

int pixelsFor(double units, double resolution) { return std::max(1, int(std::lround(units * resolution))); }

} // namespace

VXRReflectionRenderable::VXRReflectionRenderable() = default;

VXRReflectionRenderable::~VXRReflectionRenderable() = default;

void VXRReflectionRenderable::setRenderableToReflect(std::shared_ptr<VXRRenderable> renderable)
{
    for (const VXRRenderable* next = renderable.get(); next;) {
        if (next == this)
            throw InvalidArgumentException("A reflection can't reflect itself.");
        const auto* reflection = dynamic_cast<const VXRReflectionRenderable*>(next);
        next = reflection ? reflection->mReflectedRenderable.get() : nullptr;
    }
    autoErase();
    const auto old = std::exchange(mReflectedRenderable, std::move(renderable));
    setNaturalSize(reflectedSize());
    updateOffset();
    _freeImageResources();
    autoInvalidate();
}

void VXRReflectionRenderable::setStartOpacity(float opacity)
{
    mStartOpacity = opacity;
    autoInvalidate();
}

float VXRReflectionRenderable::sustainHeight() const
{
    return mReflectedRenderable
        ? std::min(heightPart * mReflectedRenderable->alignmentBounds().size.height, mostHeight)
        : 0;
}

Size VXRReflectionRenderable::reflectedSize() const
{
    return mReflectedRenderable ? Size { mReflectedRenderable->alignmentBounds().size.width, sustainHeight() }
                                : Size {};
}

void VXRReflectionRenderable::updateOffset()
{
    if (!mReflectedRenderable)
        return;
    const Rect bounds = mReflectedRenderable->alignmentBounds();
    offsetTo({ bounds.minX(), bounds.minY() + bounds.size.height + gap });
}

void VXRReflectionRenderable::invalidate()
{
    VXRRenderable::invalidate();
    _freeImageResources();
    const Size size = reflectedSize();
    if (size == naturalSize())
        return;
    setNaturalSize(size);
    erase(); // what it covers from now on
}

// Capture.

std::size_t VXRReflectionRenderable::bytesUsed() const { return mImageData ? mImageData->size() : 0; }

void VXRReflectionRenderable::_freeImageResources()
{
    mImageRef.reset();
    mImageData.reset();
    mRenderer.reset();
}

std::shared_ptr<const Image> VXRReflectionRenderable::_reflectedImageRef(double resolution)
{
    if (!mImageRef && mReflectedRenderable && !mIsCapturing)
        capture(resolution);
    return mImageRef;
}

void VXRReflectionRenderable::capture(double wanted)
{
    struct Capturing {
        bool& flag;
        explicit Capturing(bool& isCapturing)
            : flag(isCapturing)
        {
            flag = true;
        }
        ~Capturing() { flag = false; }
    } const capturing(mIsCapturing);
    // Moves since the bounds were computed must not show in how the numbers are rounded.
    mReflectedRenderable->drawWhereBoundsWereComputed([&] {
        const Rect bounds = mReflectedRenderable->alignmentBounds();
        const double width = wholeUnits(bounds.size.width), height = wholeUnits(sustainHeight());
        if (width < 1 || height < 2 || !std::isfinite(bounds.minX()) || !std::isfinite(bounds.minY()))
            return;
        const double resolution = possibleResolution(wanted, width, height);
        const int columns = pixelsFor(width, resolution), rows = pixelsFor(height, resolution);
        if (rows < 2)
            return;
        const std::size_t rowBytes = 4 * static_cast<std::size_t>(columns);
        auto pixels = std::make_shared<std::vector<std::uint8_t>>(rowBytes * static_cast<std::size_t>(rows));
        const auto bitmap = BitmapContext::createWithPixels(pixels->data(), columns, rows, rowBytes);
        // The base mirrors, so that shadows within the object are mirrored too. These are given in base
        // space at the scale of the canvas.
        const VXRCanvasRole* const canvas = mReflectedRenderable->canvas();
        const float viewScale = canvas && canvas->viewScale() > 0 ? canvas->viewScale() : 1;
        const auto sx = static_cast<float>(columns / width), sy = static_cast<float>(rows / height);
        bitmap->setBaseTransform({ sx / viewScale, 0, 0, -sy / viewScale, 0, 0 });
        bitmap->scale(viewScale, -viewScale);
        bitmap->translate(-bounds.minX(), -bounds.minY());
        bitmap->translate(0, -(bounds.size.height - static_cast<float>(height)));
        {
            const CurrentContextScope current(*bitmap, true, true);
            mReflectedRenderable->renderIntoContext(*bitmap);
        }
        mImageData = std::move(pixels);
        fade(columns, rows);
        ImageLayout layout = ImageLayout::nativeARGB(columns, rows, rowBytes);
        layout.space = VXRGenericRGBColorSpace();
        mImageRef = Image::create(layout, mImageData->data(), mImageData->size(), mImageData);
        mResolution = wanted;
    });
    if (mImageRef)
        VXUObjectFlusher::instance().objectAddedData(*this);
}

void VXRReflectionRenderable::fade(int width, int height)
{
    const double start = mStartOpacity > 0 ? std::min(mStartOpacity, 1.0f) : 0;
    std::uint8_t* byte = mImageData->data();
    for (int row = 0; row < height; ++row) {
        const double factor = std::pow(1 - double(row) / (height - 1), double { fadePower }) * start;
        for (int i = 0; i < 4 * width; ++i, ++byte)
            *byte = static_cast<std::uint8_t>(*byte * factor);
    }
}

// Drawing.

double VXRReflectionRenderable::resolutionFor(const Context& context) const
{
    const AffineTransform t = context.currentTransform();
    double scale = std::max(std::hypot(t.m11, t.m12), std::hypot(t.m21, t.m22));
    const bool isPaper
        = !GraphicsContext::currentContextDrawingToScreen() && !const_cast<Context&>(context).pixelAccess();
    if (isPaper)
        scale *= finestOnPaper;
    return scale > 1 ? scale : 1; // also where it is not a number
}

void VXRReflectionRenderable::renderIntoContext(Context& context)
{
    if (!mReflectedRenderable || mIsCapturing)
        return;
    const StateSaver saved(context);
    const Size size = naturalSize();
    context.concatTransform(transform());
    const double resolution = resolutionFor(context);
    context.translate(0, size.height);
    context.scale(1, -1);
    if (mImageRef && mResolution != resolution)
        _freeImageResources();
    if (!mRenderer) {
        auto image = _reflectedImageRef(resolution);
        if (!image)
            return;
        mRenderer = VXRBitmapRenderer::imageRendererWithImageRef(std::move(image));
    }
    VXUObjectFlusher::instance().objectTouched(*this);
    const auto renderer = mRenderer; // others may be told to give back memory meanwhile
    renderer->setDynamicallyTransforming(dynamicallyTransforming());
    renderer->drawInRect({ { 0, 0 }, size });
}

} // namespace vxr
