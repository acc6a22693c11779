#pragma once

#include <vxr/strokes/VXRStroke.h>
#include <vxr/strokes/manipulations/VXRPathManipulation.h>

#include <vector>

namespace vxr {

/// A stroke whose outline passes through an ordered list of manipulations before it is painted, by its
/// stroker if it has one, else as a stroke's lines are. Without either it is the plain stroke.
///
/// What it paints depends on the outline, itself and the canvas's scale; the latest result is kept.
class VXR_EXPORT VXRManipulatedStroke : public VXRStroke {
public:
    using Manipulations = std::vector<std::shared_ptr<VXRPathManipulation>>;

    /// The values are kept, not copied; none of the manipulations is none.
    static std::shared_ptr<VXRManipulatedStroke> strokeWithColorWidthManipulationsStroker(
        std::shared_ptr<Color>, float width, Manipulations, std::shared_ptr<VXRPathStroker> = nullptr);

    using VXRStroke::VXRStroke;

    const Manipulations& manipulations() const { return mManipulations; }
    void setManipulations(Manipulations);
    const std::shared_ptr<VXRPathStroker>& stroker() const { return mStroker; } ///< may be none
    void setStroker(std::shared_ptr<VXRPathStroker>);

    /// What is painted for an outline, from back to front; lines in this stroke's style.
    std::vector<VXRPaintedPath> paintedPathsForOutlineScale(
        const Path& outline, float scale, bool insideStroke) const;
    /// The sum of the reaches of all steps.
    float reach() const;

    void applyInteriorWrapPropertiesToBezierPathInsideStroke(Path& path, bool insideStroke) const override;
    Rect boundsOfStrokedPath(Path& path) const override;
    bool isEqual(const Object& other) const override; ///< the steps' too, in order
    std::shared_ptr<VXRStroke> copyWithZone() const override; ///< copies the steps

protected:
    void drawOutline(Path& path, const Drawing&) const override;
    float reachBeyondLine() const override { return 2 * reach(); } ///< an inside stroke is twice as wide
    std::shared_ptr<VXRStroke> makeOfSameClass(std::shared_ptr<Color>, float width, int cap, int join,
        std::shared_ptr<VXRStrokePattern>) const override;
    bool isOfReceiversClass(const Object& other) const override;

private:
    /// What was painted last, and from what.
    struct Painted {
        Path outline;
        VXRStrokeSetting setting;
        std::vector<VXRPaintedPath> paths;
    };

    Manipulations mManipulations;
    std::shared_ptr<VXRPathStroker> mStroker;
    mutable std::shared_ptr<const Painted> mPainted;
};

} // namespace vxr
