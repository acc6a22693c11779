#include <vxr/platform/graphics/raster/SpanPainter.h>

#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <cstring>
#include <utility>

namespace vxr {

void SpanPainter::start(const PixelTarget& target, const RasterClip& clip, CompositeOperation operation)
{
    mTarget = target;
    mClip = clip.mask.get();
    mOperation = &spanKernels().operations[static_cast<int>(operation)];
    mSource = nullptr;
    mFade = 255;
    const auto width = static_cast<std::size_t>(target.extents.width());
    if (mBuffer.size() < width)
        mBuffer.resize(width);
    if (mCoverage.size() < width)
        mCoverage.resize(width);
}

void SpanPainter::setColor(std::uint32_t premultiplied) { mColor = premultiplied; }

void SpanPainter::setSource(SpanSource& source, std::uint8_t fade)
{
    mSource = &source;
    mFade = fade;
}

void SpanPainter::run(int x, int y, int count, std::uint8_t coverage)
{
    const auto size = static_cast<std::size_t>(count);
    if (mClip) {
        std::memcpy(mCoverage.data(), mClip->at(x, y), size);
        if (coverage != 255)
            spanKernels().fadeMask(mCoverage.data(), size, coverage);
        const ClipMask* clip = std::exchange(mClip, nullptr);
        mask(x, y, count, mCoverage.data());
        mClip = clip;
        return;
    }
    std::uint32_t* to = mTarget.at(x, y);
    if (!mSource)
        return mOperation->color(to, size, mColor, coverage);
    const std::uint32_t* colors = mSource->span(x, y, count, mBuffer.data());
    mOperation->pixels(to, size, colors, multiplyBytes(coverage, mFade));
}

void SpanPainter::mask(int x, int y, int count, std::uint8_t* coverage)
{
    const auto size = static_cast<std::size_t>(count);
    if (mClip)
        spanKernels().multiplyMask(coverage, mClip->at(x, y), size);
    std::uint32_t* to = mTarget.at(x, y);
    if (!mSource)
        return mOperation->colorMask(to, size, mColor, coverage);
    if (mFade != 255)
        spanKernels().fadeMask(coverage, size, mFade);
    mOperation->pixelsMask(to, size, mSource->span(x, y, count, mBuffer.data()), coverage);
}

void SpanPainter::expect(int x, int y, int count)
{
    constexpr int lineOfCache = 16; // pixels
    const std::uint32_t* pixels = mTarget.at(x, y);
    for (int i = 0; i < count; i += lineOfCache)
        __builtin_prefetch(pixels + i, 1);
    __builtin_prefetch(pixels + count - 1, 1);
}

void SpanPainter::fill(const IntRect& box)
{
    for (int y = box.y0; y < box.y1 && box.x0 < box.x1; ++y)
        run(box.x0, y, box.width(), 255);
}

} // namespace vxr
