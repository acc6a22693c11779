#pragma once

#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/graphics/raster/DeviceMatrix.h>
#include <vxr/platform/graphics/raster/SpanPainter.h>

#include <array>

namespace vxr {

/// The blend that an image stands for; none where its pixels are to be drawn: near its own size they are
/// kept, and with them their noise.
const ImageBlend* blendToPaint(const Image&, const DeviceMatrix& toDevice);

/// The blend of an image `width` pixels wide, dithered at the device's pixels.
class BlendSource final : public SpanSource {
public:
    BlendSource(const ImageBlend&, int width, const DeviceMatrix& toDevice);
    const std::uint32_t* span(int x, int y, int count, std::uint32_t* buffer) override;

private:
    void fill(double column, int x, int count, const float* thresholds, std::uint32_t* pixels) const;

    DeviceAnchor mAnchor;
    double mAcross = 0, mDown = 0, mFirst = 0; ///< columns of the image for each one and row of the device
    float mLast; ///< column
    bool mIsOpaque;
    // In levels of 255: alpha, red, green, blue.
    std::array<float, 4> mStart {}, mStep {};
};

} // namespace vxr
