#include <vxr/platform/graphics/raster/BlendSource.h>

#include <vxr/platform/graphics/ImageImpl.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

constexpr int side = 8;

/// Thresholds of an ordered dither, in levels: (rank + 1/2) / 64.
constexpr std::array<std::array<float, side>, side> orderedThresholds()
{
    std::array<std::array<float, side>, side> all {};
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            int rank = 0;
            for (int bit = 0; bit < 3; ++bit)
                rank = rank << 2 | ((x ^ y) >> bit & 1) << 1 | (y >> bit & 1);
            all[std::size_t(y)][std::size_t(x)] = (float(rank) + 0.5f) / (side * side);
        }
    return all;
}

constexpr auto thresholdsByRow = orderedThresholds();

} // namespace

const ImageBlend* blendToPaint(const Image& image, const DeviceMatrix& toDevice)
{
    const Image::Impl& impl = image.impl();
    const ColorSpace* space = impl.layout.space.get();
    if (!impl.blend || (space && !(space->model() == ColorModel::RGB && space->convertsToOutputUnchanged())))
        return nullptr;
    // Lengths of a device pixel's sides in the image.
    const DeviceMatrix m = toDevice.inverted();
    const double across = std::hypot(m.xx, m.yx), down = std::hypot(m.xy, m.yy);
    constexpr double farthestPixel = 1 << 24;
    if (!((std::abs(m.xx) + std::abs(m.xy)) * farthestPixel + std::abs(m.x0) < 0x1p52))
        return nullptr;
    const bool isNearOwnSize = std::max(across, down) < 2 && std::min(across, down) >= 0.5;
    return isNearOwnSize ? nullptr : &*impl.blend;
}

BlendSource::BlendSource(const ImageBlend& blend, int width, const DeviceMatrix& toDevice)
    : mAnchor({ toDevice.x0, toDevice.y0 })
    , mLast(float(width - 1))
    , mIsOpaque(blend.start[0] == 65535 && blend.end[0] == 65535)
{
    DeviceMatrix placed = toDevice;
    placed.x0 = mAnchor.rest.x;
    placed.y0 = mAnchor.rest.y;
    const DeviceMatrix m = placed.inverted();
    mAcross = m.xx;
    mDown = m.xy;
    // Where a column's own colour stands is its middle.
    mFirst = m.x0 + (m.xx + m.xy) / 2 - 0.5;
    for (std::size_t c = 0; c < 4; ++c) {
        mStart[c] = float(blend.start[c]) / 257;
        mStep[c] = (float(blend.end[c]) - float(blend.start[c])) / 257 / float(width);
    }
}

const std::uint32_t* BlendSource::span(int x, int y, int count, std::uint32_t* buffer)
{
    x -= mAnchor.x;
    y -= mAnchor.y;
    const double row = mFirst + mDown * y;
    // Twice, so that a run may start anywhere in it.
    float thresholds[2 * side];
    for (int i = 0; i < 2 * side; ++i)
        thresholds[i] = thresholdsByRow[std::size_t(y & (side - 1))][std::size_t((x + i) & (side - 1))];
    for (int at = 0; at < count; at += side)
        fill(row, x + at, std::min(side, count - at), thresholds, buffer + at);
    return buffer;
}

/// At most eight pixels.
void BlendSource::fill(double column, int x, int count, const float* thresholds, std::uint32_t* pixels) const
{
    float place[side];
    for (int i = 0; i < side; ++i)
        place[i] = std::clamp(float(column + mAcross * (x + i)), 0.0f, mLast);
    std::uint32_t packed[side];
    const auto level
        = [&](std::size_t channel, int i) { return mStart[channel] + mStep[channel] * place[i]; };
    if (mIsOpaque) {
        for (int i = 0; i < side; ++i)
            packed[i] = 0xff000000u | std::uint32_t(int(level(1, i) + thresholds[i])) << 16
                | std::uint32_t(int(level(2, i) + thresholds[i])) << 8
                | std::uint32_t(int(level(3, i) + thresholds[i]));
    } else {
        for (int i = 0; i < side; ++i) {
            const float alpha = level(0, i), part = alpha / 255;
            packed[i] = std::uint32_t(int(alpha + thresholds[i])) << 24
                | std::uint32_t(int(level(1, i) * part + thresholds[i])) << 16
                | std::uint32_t(int(level(2, i) * part + thresholds[i])) << 8
                | std::uint32_t(int(level(3, i) * part + thresholds[i]));
        }
    }
    std::copy_n(packed, count, pixels);
}

} // namespace vxr
