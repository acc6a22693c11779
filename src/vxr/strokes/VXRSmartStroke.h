#pragma once

#include <vxr/strokes/VXRStroke.h>

#include <string>
#include <vector>

namespace vxr {

class VXRStrokeBundle;
class VXRStrokeBundleSource;

/// A stroke whose line is a drawing laid along the path: the head of its bundle at the beginning, the tail at
/// the end, and between them bodies that are repeated a whole number of times, or one that is stretched.
/// Drawings bend with the path, around its corners too. Closed sub-paths have bodies alone; heads and tails
/// that are longer than the path are shortened to it.
///
/// Parts of the bundle without a colour take the stroke's. Dashes, caps and joins don't show. While the
/// bundle is missing the stroke is drawn as the plain stroke it is based on.
class VXR_EXPORT VXRSmartStroke : public VXRStroke {
public:
    /// With the bundle of that name, if the source has it, and a new seed. A source of none has nothing.
    static std::shared_ptr<VXRSmartStroke> smartStrokeWithNameSourceColorWidth(
        const std::string& name, VXRStrokeBundleSource*, std::shared_ptr<Color>, float width);
    /// From `random()`.
    static std::uint32_t newRandomSeed();

    using VXRStroke::VXRStroke;

    const std::string& name() const { return mName; } ///< of the bundle, whether it is there or not
    const std::shared_ptr<const VXRStrokeBundle>& bundle() const { return mBundle; } ///< or none
    /// Keeps the name, and the bundle if the source has it.
    void setNameFromSource(const std::string& name, VXRStrokeBundleSource*);
    std::uint32_t randomSeed() const { return mRandomSeed; } ///< decides what varies; the same looks the same
    void setRandomSeed(std::uint32_t seed);

    /// One colour of what is painted for an outline, filled by the nonzero rule.
    struct Layer {
        std::shared_ptr<Path> path;
        std::shared_ptr<Color> color; ///< none for the stroke's own
        float opacity = 1;
    };
    /// From back to front; empty without a bundle.
    std::vector<Layer> layersForOutline(const Path& outline, bool insideStroke) const;

    void applyInteriorWrapPropertiesToBezierPathInsideStroke(Path& path, bool insideStroke) const override;
    Rect boundsOfStrokedPath(Path& path) const override;
    bool isEqual(const Object& other) const override; ///< names and seeds too
    std::shared_ptr<VXRStroke> copyWithZone() const override; ///< shares the bundle

protected:
    void drawOutline(Path& path, const Drawing&) const override;
    float reachBeyondLine() const override;
    std::shared_ptr<VXRStroke> makeOfSameClass(std::shared_ptr<Color>, float width, int cap, int join,
        std::shared_ptr<VXRStrokePattern>) const override;
    bool isOfReceiversClass(const Object& other) const override;

private:
    /// What was painted last, and from what.
    struct Laid {
        Path outline;
        float width;
        std::vector<Layer> layers;
    };

    std::string mName;
    std::shared_ptr<const VXRStrokeBundle> mBundle;
    std::uint32_t mRandomSeed = 0;
    mutable std::shared_ptr<const Laid> mLaid;
};

} // namespace vxr
