#include <vxr/filters/VXRFilteredImage.h>

#include <vxr/filters/FilteredRendition.h>
#include <vxr/filters/VXRFilteredImageRenderer.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/host/utility/VXUObjectFlusher.h>
#include <vxr/images/VXRBitmapImageData.h>
#include <vxr/images/VXRBitmapRenderer.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/base/NotificationCenter.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/pictures/BitmapImageRep.h>
#include <vxr/platform/pictures/PlatformImage.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace vxr {

namespace {

constexpr float pagePixelsPerPoint = 4, mostPagePixels = 4096;
constexpr double previewScale = 0.35355339059327373; ///< an eighth of the pixels

Size sizeOf(const Image& image) { return { float(image.width()), float(image.height()) }; }

/// What `draw` draws at that size.
template <class Draw> std::shared_ptr<const Image> drawnImage(Size size, const Draw& draw)
{
    const auto picture = PlatformImage::imageWithSizeDrawing(size, [&](Context& context) {
        context.setInterpolationQuality(InterpolationQuality::High);
        draw(context, Rect { { 0, 0 }, size });
    });
    const auto rep
        = picture ? std::dynamic_pointer_cast<const BitmapImageRep>(picture->representation()) : nullptr;
    return rep ? rep->image(nullptr) : nullptr;
}

std::vector<FilterOperation> layerOf(const LevelPoints& points)
{
    return { points.operation(), FilterOperation::round() };
}

std::shared_ptr<const Image> reducedForPreview(const Image& image)
{
    const auto side = [](int pixels) { return std::max(1.0f, float(std::lround(previewScale * pixels))); };
    return drawnImage({ side(image.width()), side(image.height()) },
        [&](Context& context, const Rect& rect) { context.drawImage(rect, image); });
}

} // namespace

VXRFilteredImage::VXRFilteredImage()
    : mStack(std::make_shared<VXREffectStack>())
{
    takeChanges();
}

VXRFilteredImage::~VXRFilteredImage() { mStack->setChangeHandler(nullptr); }

std::shared_ptr<VXRFilteredImage> VXRFilteredImage::filteredImageWithImageBinary(
    std::shared_ptr<VXRImageBinary> binary)
{
    if (!binary)
        return nullptr;
    std::shared_ptr<VXRFilteredImage> made(new VXRFilteredImage);
    made->mBinary = std::move(binary);
    return made;
}

std::shared_ptr<VXRFilteredImage> VXRFilteredImage::filteredImageWithImageRef(
    std::shared_ptr<const Image> image)
{
    if (!image)
        return nullptr;
    std::shared_ptr<VXRFilteredImage> made(new VXRFilteredImage);
    made->mImage = std::move(image);
    return made;
}

std::shared_ptr<VXRFilteredImage> VXRFilteredImage::filteredImageWithImageRep(
    std::shared_ptr<const BitmapImageRep> rep)
{
    if (!rep)
        return nullptr;
    std::shared_ptr<VXRFilteredImage> made(new VXRFilteredImage);
    made->mRep = std::move(rep);
    return made;
}

// Settings.

void VXRFilteredImage::takeChanges()
{
    mStack->setChangeHandler([this](std::size_t layer) { layerChanged(layer); });
}

void VXRFilteredImage::setEffectStack(std::shared_ptr<VXREffectStack> stack)
{
    if (stack == mStack)
        return;
    if (!stack)
        stack = std::make_shared<VXREffectStack>();
    if (stack->hasChangeHandler())
        throw InvalidArgumentException("an effect stack belongs to one filtered image at a time");
    mStack->setChangeHandler(nullptr);
    mStack = std::move(stack);
    takeChanges();
    layerChanged(1);
}

void VXRFilteredImage::setAutomaticLevels(VXRAutomaticLevels kind)
{
    if (kind == mAutomaticLevels)
        return;
    mAutomaticLevels = kind;
    layerChanged(0);
}

void VXRFilteredImage::setClipFraction(float fraction)
{
    if (!(fraction >= 0 && fraction <= largestClipFraction))
        throw InvalidArgumentException(
            fmt::format("{} is no part of the pixels between 0 and {}", fraction, largestClipFraction));
    if (fraction == mClipFraction)
        return;
    mClipFraction = fraction;
    if (mAutomaticLevels != VXRAutomaticLevels::Off)
        layerChanged(0);
}

void VXRFilteredImage::layerChanged(std::size_t layer)
{
    if (mIsRunning) {
        mChangedMeanwhile = std::min(mChangedMeanwhile.value_or(layer), layer);
        return;
    }
    mChangedLayer = layer;
    mHasFailed = false;
    if (layer == 0)
        mLeveled.reset();
    for (const auto* rendition : { &mWhole, &mPreview }) {
        if (*rendition)
            (*rendition)->layerChanged(layer);
    }
    NotificationCenter::defaultCenter().post(VXRFilteredImageDidChangeNotification, this);
}

LevelPoints VXRFilteredImage::levelPoints() const
{
    if (mAutomaticLevels == VXRAutomaticLevels::Off)
        return {};
    if (!mHistogram) {
        const auto pixels = source();
        if (!pixels || pixels->isEmpty())
            return {};
        mHistogram = std::make_unique<LevelHistogram>(LevelHistogram::ofSource(*pixels));
    }
    return mHistogram->points(mAutomaticLevels, mClipFraction);
}

bool VXRFilteredImage::isIdentity() const { return mStack->isIdentity() && levelPoints().isIdentity(); }

bool VXRFilteredImage::drawsUnfiltered() const
{
    try {
        return mHasFailed || isIdentity();
    } catch (const std::exception&) {
        return false; // until it has been tried and told
    }
}

// The picture.

Size VXRFilteredImage::naturalSize() const
{
    if (mBinary)
        return mBinary->naturalImageSize();
    return mImage ? sizeOf(*mImage) : Size { float(mRep->pixelsWide()), float(mRep->pixelsHigh()) };
}

std::shared_ptr<const Image> VXRFilteredImage::unfilteredImage() const
{
    if (mImage)
        return mImage;
    if (mRep)
        return mRep->image(nullptr);
    if (mBinary->isMissing() || mBinary->isCorrupted())
        return nullptr;
    const auto decoded = mBinary->imageData();
    if (const auto bitmap = std::dynamic_pointer_cast<VXRBitmapImageData>(decoded))
        return bitmap->imageRef();
    const auto renderer = decoded ? decoded->imageRenderer() : nullptr;
    if (!renderer)
        return nullptr;
    if (const auto bitmap = std::dynamic_pointer_cast<VXRBitmapRenderer>(renderer))
        return bitmap->imageRef();
    const Size natural = renderer->naturalSize();
    const float scale
        = std::min(pagePixelsPerPoint, mostPagePixels / std::max(natural.width, natural.height));
    return drawnImage({ std::max(1.0f, natural.width * scale), std::max(1.0f, natural.height * scale) },
        [&](Context&, const Rect& rect) { renderer->drawInRect(rect); });
}

std::optional<FilterSource> VXRFilteredImage::source() const
{
    if (mRep)
        return FilterSource::ofRep(mRep);
    auto image = unfilteredImage();
    return image ? std::optional(FilterSource::ofImage(std::move(image))) : std::nullopt;
}

// Results.

std::vector<std::vector<FilterOperation>> VXRFilteredImage::layers() const
{
    std::vector<std::vector<FilterOperation>> all(1);
    if (const LevelPoints points = levelPoints(); !points.isIdentity())
        all[0] = layerOf(points);
    for (std::size_t i = 1; i < mStack->layerCount(); ++i)
        all.push_back(mStack->operations(i, i + 1));
    return all;
}

std::shared_ptr<const Image> VXRFilteredImage::run(
    std::unique_ptr<FilteredRendition>& rendition, bool isPreview)
{
    const auto all = layers();
    if (std::ranges::all_of(all, [](const auto& layer) { return layer.empty(); }))
        return unfilteredImage();
    if (!rendition) {
        const auto whole = isPreview ? unfilteredImage() : nullptr;
        auto pixels = isPreview
            ? (whole ? std::optional(FilterSource::ofImage(reducedForPreview(*whole))) : std::nullopt)
            : source();
        if (!pixels)
            return nullptr;
        rendition = std::make_unique<FilteredRendition>(std::move(*pixels), isPreview ? previewScale : 1);
    }
    return rendition->run(all, mChangedLayer, VXUObjectFlusher::instance().budget() / 2);
}

std::shared_ptr<const Image> VXRFilteredImage::runOrUnfiltered(
    std::unique_ptr<FilteredRendition>& rendition, bool isPreview)
{
    if (mHasFailed || mIsRunning)
        return unfilteredImage();
    std::shared_ptr<const Image> result;
    mIsRunning = true;
    try {
        result = run(rendition, isPreview);
    } catch (const std::exception& error) {
        mHasFailed = true;
        if (!std::exchange(mHasWarned, true))
            VXULog_Fn(VXULogLevelWarning, "VXRFilteredImage.cpp",
                fmt::format(
                    "Warning: a picture is drawn unfiltered, because a filter failed: {}", error.what()));
        result = unfilteredImage();
    }
    mIsRunning = false;
    if (bytesUsed() > 0)
        VXUObjectFlusher::instance().objectAddedData(*this);
    if (const auto layer = std::exchange(mChangedMeanwhile, std::nullopt))
        layerChanged(*layer);
    return result;
}

std::shared_ptr<const Image> VXRFilteredImage::filteredImage() { return runOrUnfiltered(mWhole, false); }

std::shared_ptr<const Image> VXRFilteredImage::leveledImage()
{
    const LevelPoints points = levelPoints();
    if (points.isIdentity())
        return unfilteredImage();
    if (!mLeveled) {
        if (auto pixels = source()) {
            FilteredRendition rendition(std::move(*pixels), 1);
            mLeveled = rendition.run({ layerOf(points) }, 0, 0);
            VXUObjectFlusher::instance().objectAddedData(*this);
        }
    }
    return mLeveled;
}

void VXRFilteredImage::setPreviewing(bool flag)
{
    if (flag == mIsPreviewing)
        return;
    mIsPreviewing = flag;
    if (!mIsRunning)
        mPreview.reset();
    if (!flag)
        NotificationCenter::defaultCenter().post(VXRFilteredImageDidChangeNotification, this);
}

std::shared_ptr<const Image> VXRFilteredImage::drawingImage()
{
    return mIsPreviewing ? runOrUnfiltered(mPreview, true) : filteredImage();
}

std::shared_ptr<VXRImageRenderer> VXRFilteredImage::imageRenderer(std::optional<Rect> crop)
{
    return VXRFilteredImageRenderer::rendererWithFilteredImageCrop(shared_from_this(), crop);
}

// Memory.

bool VXRFilteredImage::isFlushable() const { return !mIsRunning && bytesUsed() > 0; }

std::size_t VXRFilteredImage::bytesUsed() const
{
    std::size_t bytes = mLeveled ? mLeveled->layout().bytesPerRow * std::size_t(mLeveled->height()) : 0;
    for (const auto* rendition : { &mWhole, &mPreview })
        bytes += *rendition ? (*rendition)->bytesUsed() : 0;
    return bytes;
}

void VXRFilteredImage::flushLocalData()
{
    if (mWhole && mWhole->hasLower())
        return mWhole->dropLower();
    mWhole.reset();
    mPreview.reset();
    mLeveled.reset();
}

// As a value.

bool VXRFilteredImage::isEqual(const Object& other) const
{
    const auto* image = dynamic_cast<const VXRFilteredImage*>(&other);
    return image && mImage == image->mImage && mRep == image->mRep
        && (mBinary == image->mBinary || (mBinary && image->mBinary && mBinary->isEqual(*image->mBinary)))
        && mAutomaticLevels == image->mAutomaticLevels && mClipFraction == image->mClipFraction
        && mStack->isEqual(*image->mStack);
}

std::shared_ptr<VXRFilteredImage> VXRFilteredImage::copyWithZone() const
{
    std::shared_ptr<VXRFilteredImage> copy(new VXRFilteredImage);
    copy->mBinary = mBinary;
    copy->mImage = mImage;
    copy->mRep = mRep;
    copy->mAutomaticLevels = mAutomaticLevels;
    copy->mClipFraction = mClipFraction;
    copy->setEffectStack(mStack->copyWithZone());
    return copy;
}

} // namespace vxr
