#pragma once

#include <vxr/strokes/manipulations/VXRPathManipulation.h>

namespace vxr {

/// Paints several parallel lines, the middle of them along the outline.
class VXR_EXPORT VXROutsetPathStroker final : public VXRPathStroker {
public:
    static constexpr int mostLines = 16;

    explicit VXROutsetPathStroker(int count = 2, float spacing = 1.5f, float widthFactor = 0.5f)
        : mCount(count)
        , mSpacing(spacing)
        , mWidthFactor(widthFactor)
    {
    }

    int count() const { return mCount; } ///< 1 to `mostLines`; what lies beyond counts as that
    void setCount(int count) { mCount = count; }
    float spacing() const { return mSpacing; } ///< from middle to middle, in line widths
    void setSpacing(float spacing) { mSpacing = spacing; }
    float widthFactor() const { return mWidthFactor; } ///< each line's width in the stroke's
    void setWidthFactor(float factor) { mWidthFactor = factor; }

    std::vector<VXRPaintedPath> paintedPaths(const VXRPaintedPath&, const VXRStrokeSetting&) const override;
    float reachForLineWidth(float lineWidth) const override;
    std::shared_ptr<VXRPathStroker> copyWithZone() const override;
    bool isEqual(const Object&) const override;

private:
    int countThatCounts() const;

    int mCount;
    float mSpacing, mWidthFactor;
};

} // namespace vxr
