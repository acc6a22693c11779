#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/Context.h>

#include <optional>

namespace vxr {

class VXRBitmapRenderingQualityInfo;
class VXRCanvasRole;
class VXRImageRendererOwner;

/// Draws one picture, its top at the top of an unflipped context. Asks its owner's canvas how.
class VXR_EXPORT VXRImageRenderer : public Object {
public:
    ~VXRImageRenderer() override;
    VXRImageRenderer(const VXRImageRenderer&) = delete;
    VXRImageRenderer& operator=(const VXRImageRenderer&) = delete;

    Size naturalSize() const { return mNaturalSize; } ///< points
    void setNaturalSize(Size size) { mNaturalSize = size; }
    VXRImageRendererOwner* owner() const { return mOwner; } ///< not owned; cleared by itself
    void setOwner(VXRImageRendererOwner* owner) { mOwner = owner; }
    bool dynamicallyTransforming() const { return mDynamicallyTransforming; }
    void setDynamicallyTransforming(bool flag) { mDynamicallyTransforming = flag; }
    VXRCanvasRole* canvas() const; ///< the owner's
    /// Whether what is shown may be sharpened later (see `VXRPagePixels::setRendersLater`), and whether, last
    /// time, something was left for then.
    void setMayDrawLater(bool flag) { mMayDrawLater = flag; }
    bool awaitsPixels() const { return mAwaitsPixels; }

    /// Fills the rectangle of the current context. Sets its interpolation: none while an interactive
    /// transform goes on, else the best.
    virtual void drawInRect(const Rect&) = 0;
    /// Draws at natural size, at the origin of the context.
    virtual void drawTileInContext(Context&) = 0;

    /// Whether the renderer itself draws while its owner is being transformed, and how.
    virtual bool wantsToRenderDynamically() const { return false; }
    virtual void renderDynamically() { }

    /// From now on what follows answers as the canvas does now.
    void cacheState();
    bool isPrinting() const;
    float viewScale() const; ///< 1 without a canvas
    bool isStatic() const;
    VXRBitmapRenderingQualityInfo* bitmapRenderingQualityInfo() const; ///< none once the record has gone

protected:
    VXRImageRenderer() = default;

    InterpolationQuality interpolation() const
    {
        return mDynamicallyTransforming ? InterpolationQuality::None : InterpolationQuality::High;
    }
    bool mayDrawLater() const { return mMayDrawLater; }
    void setAwaitsPixels(bool flag) { mAwaitsPixels = flag; }
    Rect naturalRect() const { return { { 0, 0 }, mNaturalSize }; }

private:
    struct CachedState {
        bool isPrinting;
        float viewScale;
        bool isStatic;
        std::weak_ptr<VXRBitmapRenderingQualityInfo> bitmapRenderingQualityInfo;
    };

    Size mNaturalSize;
    VXRImageRendererOwner* mOwner = nullptr;
    bool mDynamicallyTransforming = false, mMayDrawLater = false, mAwaitsPixels = false;
    std::optional<CachedState> mCachedState;
};

} // namespace vxr
