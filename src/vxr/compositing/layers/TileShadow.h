#pragma once

#include <vxr/platform/graphics/values/IntRect.h>

#include <cstdint>
#include <vector>

namespace vxr {

class TilePlane;
class VXRShadow;
struct LayerInfo;

/// The shadow that a tile's content casts, as a blurred mask. It stays where the content is: angle and
/// offset count when it is shown.
class TileShadow {
public:
    /// How far beyond the content a mask reaches, in pixels. `scale` is that of the shadow's own lengths.
    static int reach(const VXRShadow&, float scale);

    bool isEmpty() const { return mMask.empty(); }
    std::size_t byteSize() const { return mMask.capacity(); }
    void clear() { mMask = std::vector<std::uint8_t>(); } // an empty list would keep the memory
    /// Blurs what the plane holds, as far as it lies within `bitmap`.
    void build(const TilePlane&, const VXRShadow&, float scale, const IntRect& bitmap);

    /// How far the shadow lies from its content, in whole pixels.
    static Point offset(const VXRShadow&, float scale);
    /// Fills in everything but the clip, for a mask whose bitmap lies at (x, y).
    void describe(LayerInfo&, const VXRShadow&, float opacity, int x, int y);

private:
    std::vector<std::uint8_t> mMask; ///< coverage
    IntRect mBox; ///< its place in the bitmap: the content and the reach around it
};

} // namespace vxr
