#pragma once

#include <tests/support/RecordingContext.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRRenderableLayer.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vxr::test {

using Lines = std::vector<std::string>;

/// A canvas that answers what a test tells it and writes down what it is told.
class FakeCanvas final : public VXRCanvasRole {
public:
    explicit FakeCanvas(Lines* calls = nullptr)
        : lines(calls)
    {
    }

    Lines* lines;
    float scale = 1;
    bool compositor = false;
    int destination = VXRDestinationDirect;
    bool blackAndWhite = false;
    std::optional<AffineTransform> shadowTransform;
    Rect visible { 0, 0, 500, 500 };

    void registerRenderable(VXRRenderable&) override { write("register"); }
    void unregisterRenderable(VXRRenderable&) override { write("unregister"); }
    void setNeedsDisplayInRect(const Rect& r) override { write("damage " + text(r)); }
    void invalidateRenderable(VXRRenderable&) override { write("told"); }
    void invalidateRenderableInRect(VXRRenderable&, const Rect& r) override { write("told-in " + text(r)); }
    float viewScale() const override { return scale; }
    bool usesCompositor() const override { return compositor; }
    int renderingDestination() const override { return destination; }
    bool rendersBlackAndWhite() const override { return blackAndWhite; }
    std::optional<AffineTransform> additionalShadowTransform() const override { return shadowTransform; }
    Rect clipViewVisibleRect() const override { return visible; }
    Rect visibleRect() const override { return visible; }
    Rect convertRectToWindow(const Rect& r) const override { return r; }

private:
    void write(std::string line)
    {
        if (lines)
            lines->push_back(std::move(line));
    }
};

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
    void setRenderingMode(int m) override { mode = m, lines->push_back("layer mode " + std::to_string(m)); }
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
