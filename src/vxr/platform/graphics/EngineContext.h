#pragma once

#include <vxr/platform/graphics/DrawingEngine.h>

#include <utility>

namespace vxr {

/// A context, or a family of contexts, drawn by an engine.
template <class Interface> class EngineContext : public Interface {
public:
    explicit EngineContext(std::unique_ptr<DrawingEngine> engine)
        : mEngine(std::move(engine))
    {
    }

    void saveState() final { mEngine->saveState(); }
    void restoreState() final { mEngine->restoreState(); }
    std::size_t stateDepth() const final { return mEngine->stateDepth(); }
    void unwindToDepth(std::size_t depth) final { mEngine->unwindToDepth(depth); }

    AffineTransform currentTransform() const final { return state().transform; }
    AffineTransform baseTransform() const final { return mEngine->baseTransform(); }
    void setBaseTransform(const AffineTransform& t) final { mEngine->setBaseTransform(t); }
    void concatTransform(const AffineTransform& t) final { mEngine->concatTransform(t); }

    using Context::fillPath;
    using Context::strokePath;
    void clipToPath(const Path& path, WindingRule rule) final { mEngine->clipToPath(path, rule); }
    void clipToRect(const Rect& rect) final { mEngine->clipToRect(rect); }
    Rect clipBounds() const final { return mEngine->clipBounds(); }
    void fillPath(const Path& path, WindingRule rule) final { mEngine->fillPath(path, rule); }
    void strokePath(const Path& path, const LineStyle& style) final { mEngine->strokePath(path, style); }
    void fillRect(const Rect& rect) final { mEngine->fillRect(rect); }
    void clearRect(const Rect& rect) final { mEngine->clearRect(rect); }

    void setFillColor(const ColorValue& color) final { state().fill = { color.toRGBA(), nullptr }; }
    void setStrokeColor(const ColorValue& color) final { state().stroke = { color.toRGBA(), nullptr }; }
    void setFillPattern(std::shared_ptr<const Pattern> pattern, float alpha) final
    {
        state().fill = { { 0, 0, 0, unit(alpha) }, std::move(pattern) };
    }
    void setStrokePattern(std::shared_ptr<const Pattern> pattern, float alpha) final
    {
        state().stroke = { { 0, 0, 0, unit(alpha) }, std::move(pattern) };
    }
    const LineStyle& lineStyle() const final { return state().line; }
    void setLineStyle(const LineStyle& style) final { state().line = style; }
    float flatness() const final { return state().flatness; }
    void setFlatness(float devicePixels) final
    {
        state().flatness = devicePixels > 0 ? devicePixels : Path::defaultFlatness;
    }
    void setAlpha(float alpha) final { state().alpha = unit(alpha); }
    void setCompositeOperation(CompositeOperation operation) final { state().operation = operation; }
    void setShouldAntialias(bool antialias) final { state().antialias = antialias; }
    // The best permitted quality is always available.
    void setInterpolationQualityRange(InterpolationQuality, InterpolationQuality most) final
    {
        state().quality = most;
    }
    void setShadow(Size offset, float blur, const ColorValue& color) final
    {
        state().shadow = { offset, blur > 0 ? blur : 0, color.toRGBA() };
    }
    void clearShadow() final { state().shadow = {}; }

    void beginTransparencyLayer() final { mEngine->beginLayer(); }
    void endTransparencyLayer() final { mEngine->endLayer(); }

    void drawImage(const Rect& rect, const Image& image) final { mEngine->drawImageInDetail(rect, image); }
    bool placePage(const Rect& rect, const std::shared_ptr<const Data>& document,
        const Context::PagePixels& pixels) final
    {
        return mEngine->placePage(rect, document, pixels);
    }
    void drawShading(const Shading& shading) final { mEngine->drawShading(shading); }

    PixelAccess* pixelAccess() final { return mEngine->pixelAccess(); }

protected:
    DrawingEngine& engine() const { return *mEngine; }

private:
    /// Clamped to [0, 1]; 0 for NaN.
    static float unit(float alpha) { return alpha > 0 ? std::min(alpha, 1.0f) : 0; }

    GraphicsState& state() const { return mEngine->state; }

    std::unique_ptr<DrawingEngine> mEngine;
};

} // namespace vxr
