#pragma once

#include <vxr/protocols/VXRRenderableLayer.h>

namespace vxr {

/// A layer without pixels, for renderables that are only drawn directly. It keeps what it is told and
/// answers no records.
class DirectLayer final : public VXRRenderableLayer {
public:
    void invalidateLayer() override { }
    void clearTextures() override { }
    void setNeedsDisplay(bool) override { }
    void setNeedsDisplayInRect(const Rect&) override { }
    void prepareToDraw() override { }
    void setZoom(float zoom) override { mZoom = zoom; }
    float zoomFactor() const override { return mZoom; }
    bool hasMixedContent() const override { return mMixed; }
    void setHasMixedContent(bool mixed) override { mMixed = mixed; }
    int renderingMode() const override { return mMode; }
    void setRenderingMode(int mode) override { mMode = mode; }
    void addTexturesToArray(std::vector<VXRTexture*>&) override { }
    void addShadowTexturesToArray(std::vector<VXRTexture*>&) override { }
    void addShadowlessTexturesToArray(std::vector<VXRTexture*>&) override { }
    void addLayerInfosToArray(std::vector<LayerInfo*>&) override { }
    void addShadowInfosToArray(std::vector<LayerInfo*>&) override { }
    void addShadowlessInfosToArray(std::vector<LayerInfo*>&) override { }

private:
    float mZoom = -1; ///< no zoom yet
    bool mMixed = false;
    int mMode = VXRRenderingModeNone;
};

} // namespace vxr
