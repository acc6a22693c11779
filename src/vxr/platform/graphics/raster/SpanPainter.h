#pragma once

#include <vxr/platform/graphics/Context.h>
#include <vxr/platform/graphics/raster/RasterClip.h>

#include <vector>

namespace vxr {

/// Premultiplied ARGB pixels: a bitmap, or the part of one that a layer holds.
struct PixelTarget {
    std::uint32_t* pixels = nullptr;
    std::ptrdiff_t stride = 0; ///< pixels from row to row
    IntRect extents; ///< device space

    std::uint32_t* at(int x, int y) const
    {
        return pixels + static_cast<std::ptrdiff_t>(y - extents.y0) * stride + (x - extents.x0);
    }
};

/// Colours of device pixels. A pixel's colour depends on its place alone.
class SpanSource {
public:
    virtual ~SpanSource() = default;
    /// `count` pixels from (x, y) on: written to `buffer`, or where the source has them already.
    virtual const std::uint32_t* span(int x, int y, int count, std::uint32_t* buffer) = 0;
};

/// Composes covered pixels with a target, through a clip. Its buffers stay for the next operation.
class SpanPainter final : public CoverageSink {
public:
    void start(const PixelTarget&, const RasterClip&, CompositeOperation);
    void setColor(std::uint32_t premultiplied);
    void setSource(SpanSource&, std::uint8_t fade); ///< `fade` multiplies the source's pixels

    void expect(int x, int y, int count) override;
    void run(int x, int y, int count, std::uint8_t coverage) override;
    void mask(int x, int y, int count, std::uint8_t* coverage) override;

    void fill(const IntRect& box); ///< all of it

private:
    PixelTarget mTarget;
    const ClipMask* mClip = nullptr;
    const struct SpanOperation* mOperation = nullptr;
    std::uint32_t mColor = 0;
    SpanSource* mSource = nullptr;
    std::uint8_t mFade = 255;
    std::vector<std::uint32_t> mBuffer;
    std::vector<std::uint8_t> mCoverage;
};

} // namespace vxr
