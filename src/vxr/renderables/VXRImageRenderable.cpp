#include <vxr/renderables/VXRImageRenderable.h>

#include <vxr/filters/VXRFilteredImage.h>
#include <vxr/geometry/PathAdditions.h>
#include <vxr/geometry/TransformAdditions.h>
#include <vxr/images/AlphaOutline.h>
#include <vxr/images/VXRBitmapImageData.h>
#include <vxr/images/VXRBitmapRenderer.h>
#include <vxr/images/VXRBitmapRenderingQualityInfo.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRPagePixels.h>
#include <vxr/images/VXRPictureRenderer.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/base/NotificationCenter.h>
#include <vxr/platform/graphics/Context.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/graphics/path/Path.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

constexpr int outlinePixels = 512; ///< a side of what an outline is taken from

} // namespace

VXRImageRenderable::VXRImageRenderable()
    : mFill(std::make_shared<VXRImageFill>())
{
    mFill->setTechnique(VXRImageFillStretch);
    mFill->setOwner(this);
}

// A pattern may hold the fill for longer.
VXRImageRenderable::~VXRImageRenderable()
{
    observe(nullptr);
    mFill->setOwner(nullptr);
    NotificationCenter::defaultCenter().removeObserver(this, VXRPagePixelsDidRenderNotification);
}

std::shared_ptr<VXRImageRenderable> VXRImageRenderable::imageRenderableWithImageBinary(
    std::shared_ptr<VXRImageBinary> binary)
{
    auto renderable = std::make_shared<VXRImageRenderable>();
    const Size size = binary->naturalImageSize();
    renderable->setImageBinary(std::move(binary));
    renderable->setFrame({ { 0, 0 }, size });
    return renderable;
}

// State.

void VXRImageRenderable::takePicture()
{
    mRenderer = mBinary ? VXRPictureRenderer::rendererWithBinaryCrop(mBinary, mCrop) : nullptr;
    mFill->setRenderer(mFilteredImage ? mFilteredImage->imageRenderer(mCrop) : mRenderer);
    mFill->setDynamicallyTransforming(dynamicallyTransforming());
}

void VXRImageRenderable::pictureDidChange()
{
    takePicture();
    invalidateBoundingBox();
    autoInvalidate();
}

void VXRImageRenderable::setImageBinary(std::shared_ptr<VXRImageBinary> binary)
{
    autoErase();
    observe(nullptr);
    mBinary = std::move(binary);
    mCrop.reset();
    mAlphaOutline.reset();
    pictureDidChange();
}

void VXRImageRenderable::observe(std::shared_ptr<VXRFilteredImage> image)
{
    auto& center = NotificationCenter::defaultCenter();
    center.removeObserver(this, VXRFilteredImageDidChangeNotification);
    mFilteredImage = std::move(image);
    if (mFilteredImage)
        center.addObserver(this, VXRFilteredImageDidChangeNotification, mFilteredImage.get(),
            [this](const Notification&) { autoInvalidate(); });
}

void VXRImageRenderable::setFilteredImage(std::shared_ptr<VXRFilteredImage> image)
{
    if (image && !image->imageBinary())
        throw InvalidArgumentException("Only a filtered image of an image binary can be placed.");
    autoErase();
    if (image && image->imageBinary() != mBinary) {
        mBinary = image->imageBinary();
        mAlphaOutline.reset();
    }
    observe(std::move(image));
    pictureDidChange();
}

void VXRImageRenderable::setTechnique(std::int32_t technique)
{
    autoErase();
    mFill->setTechnique(technique);
    pictureDidChange();
}

void VXRImageRenderable::setFrame(const Rect& rect)
{
    autoErase();
    const Size before = VXRRenderable::naturalSize();
    if (mMaskPath && before.width > 0 && before.height > 0)
        mMaskPath = mMaskPath->transformedBy(
            AffineTransform::makeScale(rect.size.width / before.width, rect.size.height / before.height));
    setNaturalSize(rect.size);
    _setTransform(AffineTransform::makeTranslation(rect.minX(), rect.minY()));
    invalidateBoundingBox();
    autoInvalidate();
}

Rect VXRImageRenderable::crop() const
{
    return mCrop.value_or(Rect { { 0, 0 }, mBinary ? mBinary->naturalImageSize() : Size {} });
}

void VXRImageRenderable::setCrop(const Rect& wanted)
{
    if (!mBinary)
        return;
    _setCrop(intersectionRect(wanted, { { 0, 0 }, mBinary->naturalImageSize() }));
}

void VXRImageRenderable::_setCrop(const Rect& part)
{
    mCrop = part.isEmpty() ? std::nullopt : std::optional(part);
    pictureDidChange();
}

void VXRImageRenderable::dragPictureBy(Size delta)
{
    const auto toPicture = pictureTransform();
    if (!toPicture)
        return;
    const Size natural = mBinary->naturalImageSize();
    Rect part = crop();
    part.origin.x = std::clamp(
        part.origin.x - delta.width * toPicture->m11, 0.0f, std::max(0.0f, natural.width - part.size.width));
    part.origin.y = std::clamp(part.origin.y - delta.height * toPicture->m22, 0.0f,
        std::max(0.0f, natural.height - part.size.height));
    setCrop(part);
}

void VXRImageRenderable::setMask(VXRImageMask kind, std::shared_ptr<const Path> maskPath)
{
    autoErase();
    mMaskKind = kind;
    mMaskPath = std::move(maskPath);
    invalidateBoundingBox();
    autoInvalidate();
}

void VXRImageRenderable::setMaskPath(const Path* maskPath)
{
    setMask(maskPath ? VXRImageMask::Path : VXRImageMask::None, maskPath ? maskPath->copy() : nullptr);
}

void VXRImageRenderable::setMasksByAlpha(bool flag)
{
    setMask(flag ? VXRImageMask::Alpha : VXRImageMask::None, nullptr);
}

std::shared_ptr<Path> VXRImageRenderable::maskPath() const { return mMaskPath ? mMaskPath->copy() : nullptr; }

void VXRImageRenderable::setDynamicallyTransforming(bool flag)
{
    VXRRenderable::setDynamicallyTransforming(flag);
    mFill->setDynamicallyTransforming(flag);
}

// Geometry.

std::shared_ptr<Path> VXRImageRenderable::path() const
{
    return mMaskPath ? mMaskPath->copy() : Path::pathWithRect(frame());
}

std::shared_ptr<Path> VXRImageRenderable::transformedPath() const
{
    return path()->transformedBy(transform());
}

void VXRImageRenderable::clip() const
{
    if (mMaskPath) // which may lie beyond the frame
        geometricBoundsAsPath()->addClip();
    transformedPath()->addClip();
}

Rect VXRImageRenderable::computeAlignmentBounds() const
{
    if (!mMaskPath)
        return geometricBounds();
    const Rect visible = intersectionRect(mMaskPath->bounds(), frame());
    return boundsOfTransformedRect(transform(), visible);
}

std::optional<AffineTransform> VXRImageRenderable::pictureTransform() const
{
    const Rect part = crop();
    if (!mBinary || part.isEmpty() || frame().isEmpty())
        return std::nullopt;
    const Rect place = mFill->placementInRect(frame());
    if (place.isEmpty())
        return std::nullopt;
    const float sx = part.size.width / place.size.width, sy = part.size.height / place.size.height;
    return AffineTransform { sx, 0, 0, sy, part.minX() - place.minX() * sx, part.minY() - place.minY() * sy };
}

bool VXRImageRenderable::containsPoint(Point point) const
{
    const auto local = localPointForHitTest(point);
    if (!local || !VXRRenderable::containsPoint(point) || (mMaskPath && !mMaskPath->containsPoint(*local)))
        return false;
    if (!mBinary || mBinary->isMissing() || mBinary->isCorrupted())
        return true; // the placeholder
    auto toPicture = pictureTransform();
    if (!toPicture)
        return false;
    Point inPicture = toPicture->map(*local);
    const Rect part = crop();
    if (technique() == VXRImageFillTile) {
        inPicture.x = part.minX() + std::fmod(inPicture.x - part.minX(), part.size.width);
        inPicture.y = part.minY() + std::fmod(inPicture.y - part.minY(), part.size.height);
    }
    if (inPicture.x < part.minX() || inPicture.y < part.minY() || inPicture.x > part.maxX()
        || inPicture.y > part.maxY())
        return false;
    return mRenderer->showsPoint(inPicture);
}

std::shared_ptr<Path> VXRImageRenderable::textWrapPath() const
{
    const auto toPicture = mMaskKind == VXRImageMask::Alpha ? pictureTransform() : std::nullopt;
    const auto fromPicture = toPicture ? toPicture->inverted() : std::nullopt;
    if (fromPicture && !mAlphaOutline) {
        if (const auto image = mRenderer->overview(outlinePixels)) {
            const Size natural = mBinary->naturalImageSize();
            mAlphaOutline = outlineOfAlpha(*image)->transformedBy(
                AffineTransform::makeScale(natural.width / static_cast<float>(image->width()),
                    natural.height / static_cast<float>(image->height())));
        }
    }
    if (!fromPicture || !mAlphaOutline)
        return transformedPath();
    const auto outline = mAlphaOutline->transformedBy(concat(*fromPicture, transform()));
    // Crops and techniques show a part; the frame cuts it.
    const bool isWhole = !mCrop && technique() == VXRImageFillStretch;
    return isWhole ? outline : intersectBezierPath(*outline, *geometricBoundsAsPath());
}

// Drawing.

void VXRImageRenderable::renderIntoContext(Context& context)
{
    if (!mBinary)
        return;
    {
        StateSaver saved(context);
        mRenderer->setMayDrawLater(
            VXRPagePixels::rendersLater() && GraphicsContext::currentContextDrawingToScreen());
        mFill->paintShape(*this);
    }
    if (mRenderer->awaitsPixels())
        awaitPixels();
}

void VXRImageRenderable::awaitPixels()
{
    NotificationCenter& center = NotificationCenter::defaultCenter();
    center.removeObserver(this, VXRPagePixelsDidRenderNotification);
    center.addObserver(this, VXRPagePixelsDidRenderNotification, nullptr, [this](const Notification&) {
        NotificationCenter::defaultCenter().removeObserver(this, VXRPagePixelsDidRenderNotification);
        autoInvalidate();
    });
}

void VXRImageRenderable::addBitmapsToRenderingQualityInfo(VXRBitmapRenderingQualityInfo& info)
{
    // A filtered picture is another bitmap than the one that would be announced.
    const auto decoded = mBinary && !mFilteredImage && mBinary->hasImageData()
        ? std::dynamic_pointer_cast<VXRBitmapImageData>(mBinary->imageData())
        : nullptr;
    const auto toPicture = decoded ? pictureTransform() : std::nullopt;
    if (!toPicture)
        return;
    const auto renderer = std::dynamic_pointer_cast<VXRBitmapRenderer>(decoded->imageRenderer());
    renderer->setOwner(mFill.get());
    StateSaver saved(currentDrawingPort());
    currentDrawingPort().concatTransform(transform());
    const Size natural = mBinary->naturalImageSize();
    info.addRendererNaturalSize(
        *renderer, { natural.width / toPicture->m11, natural.height / toPicture->m22 });
}

} // namespace vxr
