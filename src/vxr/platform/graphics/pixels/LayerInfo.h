#pragma once

#include <vxr/platform/graphics/values/IntRect.h>

#include <cstdint>

namespace vxr {

/// Pixel layout codes of `LayerInfo::bitmapType`. The numbers are part of the contract.
enum LayerBitmapType : std::int32_t {
    LayerBitmapConstant = 0, ///< no pixels: `constantColor` everywhere
    LayerBitmap16 = 4, ///< destination: 16-bit pixels, 5 bits each of red, green and blue
    LayerBitmap32 = 12, ///< 32-bit premultiplied ARGB in native byte order
    LayerBitmapMask = 100, ///< 8-bit coverage in `alphaData`, painted in `constantColor`
};

/// One layer for the layer compositor, chained from top to bottom through `next`. A flat record: what it
/// points to belongs to whoever made it.
///
/// All bounds are pixels of the destination, x to the right and y downwards, and may be negative or lie
/// outside it. Clip bounds are inclusive: no pixel beyond them is touched. The frame is where the whole
/// layer lies; its minimum is the place of the first pixel of `colorData` (or `alphaData`) and its maximum
/// is the first pixel no longer covered. Opaque bounds run like the frame's: every pixel within has alpha
/// 255 before the fade. An empty clip has a maximum below its minimum; empty opaque bounds have them equal.
struct LayerInfo {
    std::uint32_t layerInfoVersion = 0; ///< always 1
    LayerInfo* next = nullptr; ///< the next lower layer
    void* (*fetchTile)(LayerInfo*) = nullptr;
    std::uint32_t layerInfo = 0;
    void* colorData = nullptr; ///< the pixel at the frame's origin
    void* alphaData = nullptr; ///< the separate alpha plane, if there is one
    void* customData = nullptr;
    std::int32_t colorBytesPerRow = 0;
    std::int32_t alphaBytesPerRow = 0;
    std::int32_t clipMinX = 0, clipMaxX = 0, clipMinY = 0, clipMaxY = 0;
    std::int32_t frameMinX = 0, frameMaxX = 0, frameMinY = 0, frameMaxY = 0;
    std::int32_t opaqueMinX = 0, opaqueMaxX = 0, opaqueMinY = 0, opaqueMaxY = 0;
    std::int32_t bitmapType = 0; ///< a `LayerBitmapType`
    std::uint32_t constantColor = 0; ///< red << 24 | green << 16 | blue << 8 | alpha
    std::uint32_t layerData = 0;
    float fade = 0; ///< opacity of the whole layer
    void* texture = nullptr;
    std::uint32_t* stamp = nullptr;
    void* clipShape = nullptr;
    void* opaqueShape = nullptr;
    float texMinX = 0, texMaxX = 0, texMinY = 0, texMaxY = 0;
    std::uint32_t flags = 0;
    LayerInfo* link = nullptr;
    float brightness = 0;
    void* filters = nullptr;
    std::uint32_t reserved[4] = { 0, 0, 0, 0 };

    // The bounds as boxes, all of them half-open.
    IntRect frame() const { return { frameMinX, frameMinY, frameMaxX, frameMaxY }; }
    void setFrame(const IntRect& r)
    {
        frameMinX = r.x0, frameMaxX = r.x1;
        frameMinY = r.y0, frameMaxY = r.y1;
    }
    IntRect clip() const
    {
        // An inclusive limit of the largest integer can't be made half-open, and no frame reaches that far.
        const auto end = [](std::int32_t last) { return last == INT32_MAX ? last : last + 1; };
        return { clipMinX, clipMinY, end(clipMaxX), end(clipMaxY) };
    }
    void setClip(const IntRect& r)
    {
        clipMinX = r.x0, clipMaxX = r.x1 - 1;
        clipMinY = r.y0, clipMaxY = r.y1 - 1;
    }
    IntRect opaque() const { return { opaqueMinX, opaqueMinY, opaqueMaxX, opaqueMaxY }; }
    void setOpaque(const IntRect& r)
    {
        const IntRect box = r.isEmpty() ? IntRect {} : r;
        opaqueMinX = box.x0, opaqueMaxX = box.x1;
        opaqueMinY = box.y0, opaqueMaxY = box.y1;
    }
};

} // namespace vxr
