#pragma once

#include <vxr/filters/AutomaticLevels.h>
#include <vxr/filters/VXREffectStack.h>
#include <vxr/host/utility/VXUFlushable.h>
#include <vxr/platform/graphics/values/Geometry.h>

#include <optional>

namespace vxr {

class BitmapImageRep;
class FilteredRendition;
class FilterSource;
class Image;
class VXRImageBinary;
class VXRImageRenderer;

/// Its object is the `VXRFilteredImage`; another picture is to be drawn.
inline constexpr std::string_view VXRFilteredImageDidChangeNotification
    = "VXRFilteredImageDidChangeNotification";

/// A picture, automatic levels, and an effect stack above them.
///
/// It has three forms, each an image of 8 bits a component: unfiltered, levelled, and filtered. A form that
/// changes nothing is the form below it. When a filter throws, a warning is logged once and the picture stays
/// unfiltered until the next change; the stack is left as it is. What a filter changes while it runs takes
/// effect afterwards. A document's page is rendered at four pixels
/// a point, up to 4,096 a side, where it is to be filtered.
///
/// Results are kept within the flusher's budget. A change of a layer has that layer and those above run
/// again; what lies below it is kept with 16 bits a component. Whatever is kept, the bytes are the same.
class VXR_EXPORT VXRFilteredImage final : public Object,
                                          public VXUFlushable,
                                          public std::enable_shared_from_this<VXRFilteredImage> {
public:
    static constexpr float defaultClipFraction = 0.005f;
    static constexpr float largestClipFraction = 0.25f;

    // None for none.
    static std::shared_ptr<VXRFilteredImage> filteredImageWithImageBinary(std::shared_ptr<VXRImageBinary>);
    static std::shared_ptr<VXRFilteredImage> filteredImageWithImageRef(std::shared_ptr<const Image>);
    static std::shared_ptr<VXRFilteredImage> filteredImageWithImageRep(std::shared_ptr<const BitmapImageRep>);
    ~VXRFilteredImage() override;

    const std::shared_ptr<VXRImageBinary>& imageBinary() const { return mBinary; } ///< or none
    Size naturalSize() const; ///< points; of the unfiltered picture

    const std::shared_ptr<VXREffectStack>& effectStack() const { return mStack; } ///< empty at first
    /// Takes the stack's change handler. None stands for an empty stack. Throws `InvalidArgumentException`
    /// for a stack that has a handler already.
    void setEffectStack(std::shared_ptr<VXREffectStack>);
    VXRAutomaticLevels automaticLevels() const { return mAutomaticLevels; } ///< off at first
    void setAutomaticLevels(VXRAutomaticLevels);
    /// The part of the pixels that may become black and the part that may become white. Throws
    /// `InvalidArgumentException` for what is not within 0 and `largestClipFraction`.
    float clipFraction() const { return mClipFraction; }
    void setClipFraction(float);
    LevelPoints levelPoints() const; ///< those that the picture and the settings give
    bool isIdentity() const; ///< no pixel changes. Throws what a filter throws.
    bool drawsUnfiltered() const; ///< for that, or because a filter has failed

    // The forms; none for a picture that can't be decoded.
    std::shared_ptr<const Image> unfilteredImage() const;
    std::shared_ptr<const Image> leveledImage();
    std::shared_ptr<const Image> filteredImage();

    /// While a value is being dragged, `drawingImage` is the filtered form of an eighth of the pixels. Turned
    /// off, the exact one takes its place.
    bool isPreviewing() const { return mIsPreviewing; }
    void setPreviewing(bool);
    std::shared_ptr<const Image> drawingImage();
    /// Draws what `drawingImage` is at the time, at the natural size; a placeholder or an unfiltered page
    /// as the picture's own renderer does. `crop` is in points, y down from the upper left corner.
    std::shared_ptr<VXRImageRenderer> imageRenderer(std::optional<Rect> crop = std::nullopt);

    bool isFlushable() const override;
    std::size_t bytesUsed() const override;
    void flushLocalData() override; ///< first what is kept of lower layers, then the results

    bool isEqual(const Object& other) const override; ///< equal picture, levels and stack
    std::shared_ptr<VXRFilteredImage> copyWithZone() const; ///< of the same picture, with a copy of the stack

private:
    VXRFilteredImage();
    std::optional<FilterSource> source() const;
    std::vector<std::vector<FilterOperation>> layers() const;
    std::shared_ptr<const Image> run(std::unique_ptr<FilteredRendition>&, bool isPreview);
    std::shared_ptr<const Image> runOrUnfiltered(std::unique_ptr<FilteredRendition>&, bool isPreview);
    void takeChanges();
    void layerChanged(std::size_t layer);

    std::shared_ptr<VXRImageBinary> mBinary;
    std::shared_ptr<const Image> mImage; ///< or
    std::shared_ptr<const BitmapImageRep> mRep; ///< or the binary
    std::shared_ptr<VXREffectStack> mStack;
    VXRAutomaticLevels mAutomaticLevels = VXRAutomaticLevels::Off;
    float mClipFraction = defaultClipFraction;
    mutable std::unique_ptr<LevelHistogram> mHistogram; ///< of the whole picture; made when needed
    std::unique_ptr<FilteredRendition> mWhole, mPreview;
    std::shared_ptr<const Image> mLeveled;
    std::size_t mChangedLayer = 0; ///< the last one to change; 0 are the levels
    std::optional<std::size_t> mChangedMeanwhile; ///< the lowest layer that a filter changed as it ran
    bool mIsPreviewing = false, mIsRunning = false, mHasFailed = false, mHasWarned = false;
};

} // namespace vxr
