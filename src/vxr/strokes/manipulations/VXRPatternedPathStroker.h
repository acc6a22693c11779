#pragma once

#include <vxr/strokes/manipulations/VXRPathManipulation.h>

namespace vxr {

/// Repeats a motif along the outline, stretched so that whole repeats fill each sub-path.
class VXR_EXPORT VXRPatternedPathStroker final : public VXRPathStroker {
public:
    /// A dot every two line widths.
    VXRPatternedPathStroker();
    /// The motif in line widths: x along the outline from 0 to `advance`, y across it, 0 on the outline
    /// itself and positive to its left (y up). It is filled, may overlap its neighbours, and is shared, not
    /// copied.
    VXRPatternedPathStroker(std::shared_ptr<Path> motif, float advance, bool bends);

    const std::shared_ptr<Path>& motif() const { return mMotif; } ///< none paints nothing
    void setMotif(std::shared_ptr<Path> motif) { mMotif = std::move(motif); }
    float advance() const { return mAdvance; } ///< nothing is painted unless it is positive
    void setAdvance(float advance) { mAdvance = advance; }
    bool bends() const { return mBends; } ///< with the outline; else each repeat is turned as it is
    void setBends(bool bends) { mBends = bends; }

    std::vector<VXRPaintedPath> paintedPaths(const VXRPaintedPath&, const VXRStrokeSetting&) const override;
    float reachForLineWidth(float lineWidth) const override;
    std::shared_ptr<VXRPathStroker> copyWithZone() const override;
    bool isEqual(const Object&) const override; ///< motifs by their elements, within 0.01

private:
    std::shared_ptr<Path> mMotif;
    float mAdvance;
    bool mBends;
};

} // namespace vxr
