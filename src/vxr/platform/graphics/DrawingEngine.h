#pragma once

#include <vxr/platform/graphics/GraphicsState.h>

#include <functional>
#include <vector>

namespace vxr {

/// What draws for a context. Transform, style and the stack of states and layers are the same in every
/// engine and stand here; an engine adds drawing, its own form of the clip and the memory of layers.
class DrawingEngine {
public:
    virtual ~DrawingEngine();
    DrawingEngine(const DrawingEngine&) = delete;
    DrawingEngine& operator=(const DrawingEngine&) = delete;

    // State.
    GraphicsState state;
    void saveState();
    void restoreState(); ///< does nothing without a save within the innermost layer
    std::size_t stateDepth() const { return mStack.size(); }
    void unwindToDepth(std::size_t); ///< drops layers that are open
    const AffineTransform& baseTransform() const { return mBase; }
    void setBaseTransform(const AffineTransform&);
    void concatTransform(const AffineTransform& t) { setTransform(concat(t, state.transform)); }
    Rect clipBounds() const;
    void setLayerReach(const Rect&);
    virtual bool clipChangesPixels() const { return false; } ///< inside of it

    // Drawing; the operations of the context.
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
    /// Draws a reduced image where several pixels of the image fall into one of the device's along both
    /// sides.
    void drawImageInDetail(const Rect&, const Image&);
    void beginLayer();
    void endLayer(); ///< does nothing without a layer

protected:
    enum class LayerEnd { Compose, ShadowOnly, Drop };

    DrawingEngine();

    /// A fresh state in which `extents` can be seen. The line y = 0 of default user space is `height` down.
    void startSurface(const DeviceBox& extents, double height);
    void stopSurface(); ///< open layers are ended; nothing is drawn any more

    bool canDraw() const { return mIsOpen && state.drawable && !state.clip.isEmpty(); }
    virtual bool hasPixels() const { return true; } ///< and so has no use for more detail than they show
    bool isInLayer() const { return !mLayerDepths.empty(); }
    double deviceHeight() const { return mDeviceHeight; }
    /// Draws through a layer that casts the state's shadow.
    void drawWithShadow(const std::function<void()>& draw);
    /// Composes what `draw` paints with a pattern as one object of the pattern's alpha. False, and nothing is
    /// drawn, when the engine can paint it in one step.
    bool drawPatternWithAlpha(const Paint&, const std::function<void()>& draw);

    // The engine's part, called after the state itself was kept or came back.
    virtual void didSaveState() { }
    virtual void didRestoreState() { }
    /// What follows goes to a layer; `state.clip` becomes what the layer holds.
    virtual void pushLayer() = 0;
    /// The innermost layer ends and does to what lies below it what `end` says.
    virtual void popLayer(LayerEnd end) = 0;

private:
    void setTransform(const AffineTransform&);
    void leaveLayer(LayerEnd);

    bool mIsOpen = false;
    double mDeviceHeight = 0;
    AffineTransform mBase;
    std::vector<GraphicsState> mStack;
    std::vector<std::size_t> mLayerDepths; ///< size of the stack within each layer at its begin
};

} // namespace vxr
