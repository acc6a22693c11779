#pragma once

#include <vxr/platform/graphics/values/Geometry.h>

#include <memory>
#include <vector>

namespace vxr {

struct LayerInfo;
class VXRLayeredRenderable;
class VXRTexture;

/// Which pass is being rendered. The numbers are part of the contract.
enum VXRRenderingMode : int {
    VXRRenderingModeNone = 0, ///< not rendering a tile
    VXRRenderingModeSingle = 1, ///< the whole renderable; its shadow is built from this pass
    VXRRenderingModeShadowed = 2, ///< mixed content: the parts that cast the shadow
    VXRRenderingModeShadowless = 3, ///< mixed content: the parts that do not cast it
};

/// The compositor layer as its renderable sees it.
class VXR_EXPORT VXRRenderableLayer {
public:
    virtual ~VXRRenderableLayer() = default;
    /// The layer through which a canvas shows the renderable; the floor that composites makes it.
    static std::shared_ptr<VXRRenderableLayer> layerWithRenderable(VXRLayeredRenderable&);

    virtual void invalidateLayer() = 0;
    virtual void clearTextures() = 0;
    virtual void setNeedsDisplay(bool) = 0;
    virtual void setNeedsDisplayInRect(const Rect&) = 0; ///< in the renderable's local frame
    virtual void prepareToDraw() = 0;
    virtual void setZoom(float) = 0;
    virtual float zoomFactor() const = 0;
    virtual bool hasMixedContent() const = 0;
    /// Whether some parts of the renderable cast its shadow and others do not.
    virtual void setHasMixedContent(bool) { }
    virtual int renderingMode() const = 0; ///< a `VXRRenderingMode`
    virtual void setRenderingMode(int) = 0;

    // Each of these appends; the layer keeps ownership of the records and textures.
    virtual void addTexturesToArray(std::vector<VXRTexture*>&) = 0;
    virtual void addShadowTexturesToArray(std::vector<VXRTexture*>&) = 0;
    virtual void addShadowlessTexturesToArray(std::vector<VXRTexture*>&) = 0;
    virtual void addLayerInfosToArray(std::vector<LayerInfo*>&) = 0;
    virtual void addShadowInfosToArray(std::vector<LayerInfo*>&) = 0;
    virtual void addShadowlessInfosToArray(std::vector<LayerInfo*>&) = 0;
};

} // namespace vxr
