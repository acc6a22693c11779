#pragma once

#include <vxr/renderables/VXRShape.h>

namespace vxr {

/// A star whose vertices alternate between an outer and an inner radius. A changed parameter makes the path
/// anew and keeps the transform: the star grows about its frame's origin, not about its centre.
class VXR_EXPORT VXRStar : public VXRShape {
public:
    static std::shared_ptr<VXRStar> starWithInnerRadiusOuterRadiusNumberOfPoints(
        float innerRadius, float outerRadius, int numberOfPoints);

    /// Takes any number of points, where the setter takes at least 3.
    VXRStar(float innerRadius, float outerRadius, int numberOfPoints);

    int numberOfPoints() const { return mNumPoints; }
    void setNumberOfPoints(int number); ///< at least 3
    float innerRadius() const { return mInnerRadius; }
    void setInnerRadius(float radius);
    float outerRadius() const { return mOuterRadius; }
    void setOuterRadius(float radius);
    /// Sets the inner radius with which each edge continues straight into the next tip but one; three and
    /// four points, which have none, get a fixed part of the outer radius.
    void optimize();

    Point center() const override; ///< of the circles

private:
    void _rebuildPath();
    Point localCenter() const;

    int mNumPoints;
    float mInnerRadius;
    float mOuterRadius;
};

} // namespace vxr
