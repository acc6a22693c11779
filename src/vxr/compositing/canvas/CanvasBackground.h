#pragma once

#include <vxr/platform/graphics/pixels/LayerInfo.h>
#include <vxr/platform/views/View.h>

#include <memory>

namespace vxr {

class Color;

/// The colour behind all renderables of a canvas; none shows what lies below the canvas. A window shows the
/// same levels of it on both roads.
class VXR_EXPORT CanvasBackground {
public:
    CanvasBackground(); ///< white

    const std::shared_ptr<Color>& color() const { return mColor; }
    void setColor(std::shared_ptr<Color> color) { mColor = std::move(color); }

    void fill(const DrawRequest&) const;
    /// The constant-colour layer that closes every composite; none without a colour.
    LayerInfo* layer();

    /// red << 24 | green << 16 | blue << 8 | 255; the colour's own alpha doesn't count.
    static std::uint32_t packedColor(Color&);

private:
    std::shared_ptr<Color> mColor;
    LayerInfo mLayer;
};

} // namespace vxr
