#pragma once

#include <vxr/platform/graphics/GraphicsState.h>

#include <vector>

namespace vxr {

/// Drawing that is done during a call. Refers to what draws: nothing is copied, so nothing is allocated.
class DrawCall {
public:
    template <class Draw>
    DrawCall(const Draw& draw)
        : mDraw(&draw)
        , mCall([](const void* object) { (*static_cast<const Draw*>(object))(); })
    {
    }
    void operator()() const { mCall(mDraw); }

private:
    const void* mDraw;
    void (*mCall)(const void*);
};

/// The drawing back end of a context. Transform, style and the stack of states and layers are the same in
/// every engine and live here; an engine adds drawing, its own form of the clip and the memory of layers.
class DrawingEngine {
public:
    virtual ~DrawingEngine();
    DrawingEngine(const DrawingEngine&) = delete;
    DrawingEngine& operator=(const DrawingEngine&) = delete;

    // State.
    GraphicsState state;
    void saveState();
    void restoreState(); ///< does nothing if there is no save within the innermost layer
    std::size_t stateDepth() const { return mStack.size(); }
    void unwindToDepth(std::size_t); ///< discards layers that are open
    const AffineTransform& baseTransform() const { return mBase; }
    void setBaseTransform(const AffineTransform&);
    void concatTransform(const AffineTransform& t) { setTransform(concat(t, state.transform)); }
    Rect clipBounds() const;

    // Drawing: the operations of the context.
    virtual void clipToPath(const Path&, WindingRule) = 0;
    virtual void clipToRect(const Rect&) = 0;
    virtual void fillPath(const Path&, WindingRule) = 0;
    virtual void strokePath(const Path&, const LineStyle&) = 0;
    virtual void fillRect(const Rect&) = 0;
    virtual void clearRect(const Rect&) = 0;
    virtual void drawImage(const Rect&, const Image&) = 0;
    virtual bool placePage(const Rect&, const std::shared_ptr<const Data>&, const Context::PagePixels&)
    {
        return false;
    }
    virtual void drawShading(const Shading&) = 0;
    virtual PixelAccess* pixelAccess() { return nullptr; }
    /// Draws a reduced copy of the image if several of its pixels fall into one device pixel along both
    /// axes.
    void drawImageInDetail(const Rect&, const Image&);
    void beginLayer();
    void endLayer(); ///< does nothing if there is no layer

protected:
    enum class LayerEnd { Compose, ShadowOnly, Drop };

    DrawingEngine();

    /// A fresh state in which `extents` is visible. The line y = 0 of default user space is `height` down.
    void startSurface(const DeviceBox& extents, double height);
    void stopSurface(); ///< ends open layers; nothing is drawn afterwards

    bool canDraw() const { return mIsOpen && state.drawable && !state.clip.isEmpty(); }
    virtual bool hasPixels() const { return true; } ///< false: more detail than the pixels show is useful
    bool isInLayer() const { return !mLayerDepths.empty(); }
    double deviceHeight() const { return mDeviceHeight; }
    DeviceBox deviceBounds(std::span<const Point>) const; ///< of points of user space
    /// Draws through a layer that casts the state's shadow.
    void drawWithShadow(DrawCall draw);
    /// Composes what `draw` paints with a pattern as one object with the pattern's alpha. Returns false, and
    /// draws nothing, if the engine can paint it in one step.
    bool drawPatternWithAlpha(const Paint&, DrawCall draw);

    // Implemented by engines; called after the state itself has been saved or restored.
    virtual void didSaveState() { }
    virtual void didRestoreState() { }
    /// Following drawing goes to a layer; `state.clip` becomes the area the layer holds.
    virtual void pushLayer() = 0;
    /// Ends the innermost layer and composes it with what lies below, as `end` says.
    virtual void popLayer(LayerEnd end) = 0;

private:
    void setTransform(const AffineTransform&);
    void leaveLayer(LayerEnd);
    /// When a step throws, drops the layers it has opened and gives the state back.
    template <class Steps> void closingOnFailure(Steps);

    bool mIsOpen = false;
    double mDeviceHeight = 0;
    AffineTransform mBase;
    std::vector<GraphicsState> mStack;
    std::vector<std::size_t> mLayerDepths; ///< for each layer, the size of the state stack at its begin
};

} // namespace vxr
