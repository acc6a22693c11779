#pragma once

#include <vxr/platform/graphics/DrawingEngine.h>
#include <vxr/platform/graphics/LayerMemory.h>
#include <vxr/platform/graphics/cairo/CairoHandles.h>

namespace vxr {

constexpr double maxLayerSide = 32767; ///< of an image

/// From a space mapped by `t` into device space, y up, to cairo's, whose y runs down from `height`.
inline cairo_matrix_t cairoMatrix(const AffineTransform& t, double height)
{
    return { t.m11, -t.m12, t.m21, -t.m22, t.tX, height - t.tY };
}

/// Where drawing goes: the surface of the context itself, or that of an open transparency layer.
/// All of them share one device space; a layer's surface is a window onto it.
struct CairoTarget {
    CairoSurfacePtr surface;
    CairoPtr cairo;
    DeviceBox extents;
    std::vector<DeviceBox> savedClips; ///< the boxes around the clips of saved states
    LayerMemory::Block memory; ///< of a layer on a bitmap
    DeviceBox ink; ///< encloses what was drawn into a layer
    DeviceBox cleared; ///< part of it that holds nothing any more
};

class CairoEngine final : public DrawingEngine, private PixelAccess {
public:
    enum class Kind { Bitmap, Recording, Document };

    /// Without a surface nothing is drawn until `startSurface`.
    CairoEngine(Kind, CairoSurfacePtr, int width, int height);
    ~CairoEngine() override;

    /// Fresh state, nothing clipped. The line y = 0 of default user space is `deviceHeight` down.
    void startSurface(CairoSurfacePtr, const DeviceBox& extents, double deviceHeight);
    void stopSurface(); ///< open layers are ended; nothing is drawn any more
    void drawOnPaper() { onPaper = true; } ///< for what is recorded for a document

    // Drawing; the operations of the context.
    void clipToPath(const Path&, WindingRule) override;
    void clipToRect(const Rect&) override;
    void fillPath(const Path&, WindingRule) override;
    void strokePath(const Path&, const LineStyle&) override;
    void fillRect(const Rect&) override;
    void clearRect(const Rect&) override;
    void drawImage(const Rect&, const Image&) override;
    bool placePage(const Rect&, const std::shared_ptr<const Data>&, const Context::PagePixels&) override;
    void drawShading(const Shading&) override;
    PixelAccess* pixelAccess() override { return kind == Kind::Bitmap ? this : nullptr; }

private:
    bool hasPixels() const override { return !onPaper; }
    void didSaveState() override;
    void didRestoreState() override;
    void pushLayer() override;
    void popLayer(LayerEnd) override;

    /// User space to cairo's device space, y down.
    cairo_matrix_t matrix() const { return cairoMatrix(state.transform, deviceHeight()); }
    cairo_antialias_t cairoAntialias() const
    {
        return state.antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE;
    }
    /// cairo's default of 0.1 pixels for the usual flatness; the flatness itself is an upper bound.
    double tolerance() const { return std::clamp(static_cast<double>(state.flatness) / 6, 0.01, 100.0); }

    // Steps of an operation.
    void setStyle(); ///< matrix, operation, antialiasing and flatness
    cairo_operator_t cairoOperator() const;
    cairo_operator_t layerOperator() const;
    void setLineStyle(const LineStyle&);
    bool setSource(const Paint&, const DeviceBox& area); ///< false when there is nothing to paint with
    bool setPatternSource(const Pattern&, const DeviceBox& area);
    void appendArea(const Path&); ///< the outline for a fill or clip; changes the matrix for a huge one
    void strokeHuge(const Path&, const LineStyle&, double reach);
    void fillOutlineOf(const Path&, const LineStyle&); ///< of the stroke
    void paintSource(); ///< over the clip, with the state's alpha
    void clipToExtendedSide(const Shading&);
    void clipToPixelsOf(const Image&, const cairo_matrix_t& toDevice);
    void noteInk(const DeviceBox&); ///< of an operation, before the clip
    void finishOperation();
    void recoverFromError();
    double strokeReach(const LineStyle&) const; ///< how far a stroke extends, in device space
    cairo_t* cr() const { return targets.back().cairo.get(); }

    // Layers and shadows.
    struct DeviceShadow {
        double dx = 0, dy = 0; ///< y down
        double sigma = 0;
        double reach = 1; ///< whole units beyond which nothing of the blur is seen
    };
    DeviceShadow deviceShadow() const;
    DeviceBox casterExtents() const; ///< of all that is seen or casts a shadow that is
    CairoTarget popLayerTarget();
    void clearClip();
    void drawLayer(CairoTarget& layer);
    bool canBlend(const CairoTarget& layer) const; ///< by our own loops
    void blendLayer(CairoTarget& layer);
    void drawShadowOf(const CairoTarget& layer);
    void releaseLayer(CairoTarget layer);

    // PixelAccess.
    bool lock() override;
    void unlock() override;
    AffineTransform transform() const override { return {}; }
    std::uint8_t* pixels() const override;
    std::size_t bytesPerRow() const override;
    int width() const override { return pixelWidth; }
    int height() const override { return pixelHeight; }

    Kind kind;
    bool onPaper; ///< what is drawn can't be taken away again, and stays vectors
    int pixelWidth, pixelHeight;
    std::vector<CairoTarget> targets; ///< the context's own surface, then the open layers
    LayerMemory layerMemory;
};

/// A recording of what `draw` draws into a context whose device space is bounded by `extents`.
CairoSurfacePtr recordDrawing(
    const DeviceBox& extents, double deviceHeight, bool onPaper, const std::function<void(Context&)>& draw);

} // namespace vxr
