#pragma once

#include <tests/support/FakeCanvas.h>
#include <vxr/protocols/VXRRenderableLayer.h>

#include <memory>
#include <string>
#include <vector>

namespace vxr::test {

/// A layer that writes down what it is told.
class FakeLayer final : public VXRRenderableLayer {
public:
    explicit FakeLayer(Lines* calls)
        : lines(calls)
    {
    }

    Lines* lines;
    float zoom = -1;
    bool mixed = false;
    int mode = 0;
    std::vector<LayerInfo*> shadowInfos;

    void invalidateLayer() override { lines->push_back("layer invalidate"); }
    void clearTextures() override { lines->push_back("layer clear"); }
    void setNeedsDisplay(bool b) override { lines->push_back(b ? "layer display" : "layer fresh"); }
    void setNeedsDisplayInRect(const Rect& r) override { lines->push_back("layer display-in " + text(r)); }
    void prepareToDraw() override { lines->push_back("layer prepare"); }
    void setZoom(float z) override { zoom = z, lines->push_back("layer zoom " + text(z)); }
    float zoomFactor() const override { return zoom; }
    bool hasMixedContent() const override { return mixed; }
    int renderingMode() const override { return mode; }
    void setRenderingMode(int m) override { mode = m; }
    void addTexturesToArray(std::vector<VXRTexture*>&) override { lines->push_back("textures"); }
    void addShadowTexturesToArray(std::vector<VXRTexture*>&) override { lines->push_back("shadow textures"); }
    void addShadowlessTexturesToArray(std::vector<VXRTexture*>&) override
    {
        lines->push_back("shadowless textures");
    }
    void addLayerInfosToArray(std::vector<LayerInfo*>&) override { lines->push_back("infos"); }
    void addShadowInfosToArray(std::vector<LayerInfo*>& infos) override
    {
        lines->push_back("shadow infos");
        infos.insert(infos.end(), shadowInfos.begin(), shadowInfos.end());
    }
    void addShadowlessInfosToArray(std::vector<LayerInfo*>&) override
    {
        lines->push_back("shadowless infos");
    }
};

/// A renderable of class `Base` whose layer is a `FakeLayer` that writes into `lines`.
template <class Base> class Layered final : public Base {
public:
    template <class... Arguments>
    explicit Layered(Lines* calls, Arguments... arguments)
        : Base(arguments...)
        , lines(calls)
    {
    }

    FakeLayer& fakeLayer() const { return static_cast<FakeLayer&>(*this->layer()); }

    Lines* lines;

protected:
    std::shared_ptr<VXRRenderableLayer> makeLayer() override { return std::make_shared<FakeLayer>(lines); }
};

} // namespace vxr::test
