#pragma once

#include <vxr/platform/graphics/cairo/CairoContext.h>
#include <vxr/platform/graphics/cairo/CairoLayerMemory.h>
#include <vxr/platform/graphics/cairo/CairoState.h>

namespace vxr {

constexpr double maxLayerSide = 32767; ///< of an image

/// Where drawing goes: the surface of the context itself, or that of an open transparency layer.
/// All of them share one device space; a layer's surface is a window onto it.
struct CairoTarget {
    CairoSurfacePtr surface;
    CairoPtr cairo;
    DeviceBox extents;
    std::size_t stackDepth = 0; ///< states saved before the layer began; no restore goes below
    LayerMemory::Block memory; ///< of a layer on a bitmap
    DeviceBox ink; ///< encloses what was drawn into a layer
    DeviceBox cleared; ///< part of it that holds nothing any more
};

struct CairoContext::Impl final : PixelAccess {
    enum class Kind { Bitmap, Recording, Document };

    /// Without a surface nothing is drawn until `startSurface`.
    Impl(Kind, CairoSurfacePtr, int width, int height);
    ~Impl();

    // Setting up.
    static std::shared_ptr<CairoContext> makeContext(std::unique_ptr<Impl>);
    /// Fresh state, nothing clipped. The line y = 0 of default user space is `deviceHeight` down.
    void startSurface(CairoSurfacePtr, const DeviceBox& extents, double deviceHeight);
    void stopSurface(); ///< open layers are ended; nothing is drawn any more
    void setTransform(const AffineTransform&);

    // Drawing; the operations of the context.
    bool canDraw() const { return !targets.empty() && state.drawable && !state.clip.isEmpty(); }
    Rect clipBounds() const;
    void clipToPath(const Path&, WindingRule);
    void clipToRect(const Rect&);
    void fillPath(const Path&, WindingRule);
    void strokePath(const Path&, const LineStyle&);
    void fillRect(const Rect&);
    void clearRect(const Rect&);
    void drawImage(const Rect&, const Image&);
    void drawShading(const Shading&);
    void beginLayer();
    void endLayer();

    // Steps of an operation.
    void setStyle(); ///< matrix, operation, antialiasing and flatness
    cairo_operator_t cairoOperator() const;
    cairo_operator_t layerOperator() const;
    void setLineStyle(const LineStyle&);
    bool setSource(const CairoPaint&, const DeviceBox& area); ///< false when there is nothing to paint with
    bool setPatternSource(const Pattern&, const DeviceBox& area);
    /// Whether the paint is a pattern that `draw` could not paint itself, and has been painted.
    bool drawPatternWithAlpha(const CairoPaint&, const std::function<void()>& draw);
    void appendArea(const Path&); ///< the outline for a fill or clip; changes the matrix for a huge one
    void strokeHuge(const Path&, const LineStyle&, double reach);
    bool losesCorners(const Path&, const LineStyle&) const; ///< when the engine strokes it
    void fillOutlineOf(const Path&, const LineStyle&); ///< of the stroke
    void paintSource(); ///< over the clip, with the state's alpha
    void clipToExtendedSide(const Shading&);
    void clipToPixelsOf(const Image&, const cairo_matrix_t& toDevice);
    void noteInk(const DeviceBox&); ///< of an operation, before the clip
    void finishOperation();
    void recoverFromError();
    DeviceBox deviceBounds(std::span<const Point>) const;
    double strokeReach(const LineStyle&) const; ///< how far a stroke extends, in device space
    bool isInLayer() const { return targets.size() > 1; }
    cairo_t* cr() const { return targets.back().cairo.get(); }

    // Layers and shadows.
    struct DeviceShadow {
        double dx = 0, dy = 0; ///< y down
        double sigma = 0;
        double reach = 1; ///< whole units beyond which nothing of the blur is seen
    };
    DeviceShadow deviceShadow() const;
    DeviceBox layerClip() const; ///< what cuts layers: the clip, wider if they are to reach further
    DeviceBox casterExtents() const; ///< of all that is seen or casts a shadow that is
    CairoTarget leaveLayer(); ///< and back to the state before it
    void drawWithShadow(const std::function<void()>& draw);
    void pushLayerTarget();
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
    double deviceHeight = 0;
    AffineTransform base;
    CairoState state;
    std::vector<CairoState> stack;
    std::vector<CairoTarget> targets; ///< the context's own surface, then the open layers
    LayerMemory layerMemory;
};

/// A recording of what `draw` draws into a context whose device space is bounded by `extents`.
CairoSurfacePtr recordDrawing(const DeviceBox& extents, double deviceHeight, bool onPaper,
    const std::function<void(CairoContext&)>& draw);

} // namespace vxr
