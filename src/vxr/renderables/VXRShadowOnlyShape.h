#pragma once

#include <vxr/renderables/VXRShape.h>

namespace vxr {

/// A shape of which the compositor shows the shadow alone, with a look that stays the same on the screen at
/// every zoom.
class VXR_EXPORT VXRShadowOnlyShape : public VXRShape {
public:
    /// Edges at which the shadow's records are clipped to lie outside the shape.
    enum Clip : int { ClipBelow = 1, ClipRightOf = 4, ClipLeftOfRightEdge = 8 };

    std::shared_ptr<VXRShadow> shadow() const override; ///< made for the layer's zoom, whatever is set
    Rect erasableBounds() const override; ///< with twenty units of slack
    bool allowsTiling() const override { return false; }
    void setClip(int bits) { mClip = bits; } ///< bits of `Clip`
    int absoluteClip() const { return mClip; }
    void addLayersToArray(std::vector<LayerInfo*>&) override; ///< the shadow's records alone
    void addTexturesToArray(std::vector<VXRTexture*>&) override;

private:
    std::vector<LayerInfo*> clippedShadowInfos();

    int mClip = 0;
};

} // namespace vxr
