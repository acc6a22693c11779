#pragma once

#include <vxr/platform/graphics/DrawingEngine.h>
#include <vxr/platform/graphics/LayerMemory.h>
#include <vxr/platform/graphics/path/PathStroker.h>
#include <vxr/platform/graphics/pixels/Blur.h>
#include <vxr/platform/graphics/raster/DeviceMatrix.h>
#include <vxr/platform/graphics/raster/OutlineFeeder.h>
#include <vxr/platform/graphics/raster/SpanPainter.h>

namespace vxr {

/// Draws into a bitmap of premultiplied ARGB pixels by exact areas.
///
/// What a pixel shows depends on what is drawn and where: no step of drawing looks at the clip, or at where a
/// layer or a dirty rectangle ends, but to leave out pixels.
class RasterEngine final : public DrawingEngine, private PixelAccess {
public:
    /// Over the caller's pixels, which outlive the engine. Device space begins at (x, y).
    RasterEngine(std::uint32_t* pixels, std::ptrdiff_t stride, const IntRect& extents, double deviceHeight);
    ~RasterEngine() override;

    void clipToPath(const Path&, WindingRule) override;
    void clipToRect(const Rect&) override;
    void fillPath(const Path&, WindingRule) override;
    void strokePath(const Path&, const LineStyle&) override;
    void fillRect(const Rect&) override;
    void clearRect(const Rect&) override;
    void drawImage(const Rect&, const Image&) override;
    void drawShading(const Shading&) override;
    PixelAccess* pixelAccess() override { return this; }

private:
    /// Where drawing goes: the bitmap, or an open transparency layer. All share one device space.
    struct Target {
        PixelTarget pixels;
        LayerMemory::Block memory; ///< of a layer
        IntRect ink; ///< encloses what was drawn into a layer
    };
    /// The state's shadow in device space.
    struct DeviceShadow {
        int dx = 0, dy = 0; ///< y down
        float sigma = 0;
        int reach = 1; ///< beyond which nothing of the blur is seen
    };

    void didSaveState() override { mSavedClips.push_back(mClip); }
    void didRestoreState() override;
    void pushLayer() override;
    void popLayer(LayerEnd) override;

    DeviceMatrix matrix() const { return { state.transform, deviceHeight() }; }
    double tolerance() const;
    const PixelTarget& target() const { return mTargets.back().pixels; }
    void noteInk(const IntRect&);

    void cutClip(const FixedBox&);
    void cutClipToOutline(WindingRule, const DeviceBox& bounds); ///< that the raster holds
    void narrowClip(RasterClip, const DeviceBox& bounds);

    void startPainting(CompositeOperation operation) { mPainter.start(target(), mClip, operation); }
    void fillOutline(WindingRule, const Paint&); ///< that the raster holds
    void fillBox(const FixedBox&, const Paint&);
    bool setPaint(const Paint&, const IntRect& area); ///< false when there is nothing to paint with
    void fillSource(const IntRect& box, SpanSource&, std::uint8_t fade);

    DeviceShadow deviceShadow() const;
    IntRect casterExtents() const; ///< of all that is seen or casts a shadow that is
    void drawShadowOf(const Target& layer);
    void drawLayer(const Target& layer);
    void eraseWith(const Target& layer, const IntRect& seen);
    void releaseLayer(Target);

    // PixelAccess.
    bool lock() override { return !isInLayer(); }
    void unlock() override { }
    AffineTransform transform() const override { return {}; }
    std::uint8_t* pixels() const override { return reinterpret_cast<std::uint8_t*>(bitmap().pixels); }
    std::size_t bytesPerRow() const override { return 4 * static_cast<std::size_t>(bitmap().stride); }
    int width() const override { return bitmap().extents.width(); }
    int height() const override { return bitmap().extents.height(); }
    const PixelTarget& bitmap() const { return mTargets.front().pixels; }

    std::vector<Target> mTargets;
    ClipMasks mMasks;
    RasterClip mClip;
    std::vector<RasterClip> mSavedClips;
    PathStroker mStroker;
    ShapeRaster mRaster;
    SpanPainter mPainter;
    std::unique_ptr<SpanSource> mPattern; ///< of the operation under way
    std::vector<std::uint8_t> mLayerMask; ///< of a shadow, or of what a layer clears
    BlurMemory mBlurMemory;
    LayerMemory mLayerMemory;
};

} // namespace vxr
