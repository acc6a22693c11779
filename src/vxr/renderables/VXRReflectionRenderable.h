#pragma once

#include <vxr/host/utility/VXUFlushable.h>
#include <vxr/renderables/VXRRenderable.h>

namespace vxr {

class Image;
class VXRBitmapRenderer;

/// A mirrored, fading copy of another renderable's bottom strip, to be placed right below it.
///
/// It shows what `renderIntoContext` of the reflected renderable draws: its opacity and shadow stay its own,
/// those of a group's members are mirrored with them. Whoever puts it on a canvas invalidates it when the
/// look or the size of the reflected renderable changes, and calls `updateOffset` when that has moved. Where
/// the reflected renderable contains its own reflection, that one shows nothing in the capture.
///
/// The capture has a pixel for each of the device's, so that it is sharp at every view scale: at least one
/// and at most `maxCapturePixels`, and on paper 300 an inch. Rows fade by their place in the strip, hence
/// alike at every resolution. One capture is kept at a time; it counts against the flusher's budget.
class VXR_EXPORT VXRReflectionRenderable final : public VXRRenderable, public VXUFlushable {
public:
    static constexpr double maxCapturePixels = 16.0 * 1024 * 1024;

    VXRReflectionRenderable(); ///< reflects nothing, start opacity 0.5
    ~VXRReflectionRenderable() override;

    const std::shared_ptr<VXRRenderable>& reflectedRenderable() const { return mReflectedRenderable; }
    /// Takes the size and goes to the place that belong to it; draws nothing for none. Throws
    /// `InvalidArgumentException` for itself and for a reflection that reflects this one.
    void setRenderableToReflect(std::shared_ptr<VXRRenderable>);
    /// Of the row nearest the object. Values beyond 0 to 1 are kept and draw as the nearer of these.
    float startOpacity() const { return mStartOpacity; }
    void setStartOpacity(float);

    float sustainHeight() const; ///< 40 percent of the reflected alignment bounds, at most 120 units
    void updateOffset(); ///< moves one unit below the reflected alignment bounds

    /// Also takes the reflected size anew and drops the capture. The place stays.
    void invalidate() override;
    /// Nothing for a strip of less than two units or none wide.
    void renderIntoContext(Context&) override;
    bool tellsOfChangedBounds() const override { return true; }

    /// The kept capture, or one at `resolution` pixels a unit; none where nothing is drawn. Its first row is
    /// the one nearest the object.
    std::shared_ptr<const Image> _reflectedImageRef(double resolution = 1);
    void _freeImageResources();

    bool isFlushable() const override { return mImageRef != nullptr; }
    std::size_t bytesUsed() const override;
    void flushLocalData() override { _freeImageResources(); }

private:
    Size reflectedSize() const;
    double resolutionFor(const Context&) const;
    void capture(double resolution);
    void fade(int width, int height);

    std::shared_ptr<VXRRenderable> mReflectedRenderable;
    std::shared_ptr<const Image> mImageRef;
    std::shared_ptr<std::vector<std::uint8_t>> mImageData;
    std::shared_ptr<VXRBitmapRenderer> mRenderer;
    float mStartOpacity = 0.5f;
    double mResolution = 0; ///< of the capture
    bool mIsCapturing = false;
};

} // namespace vxr
