#pragma once

#include <vxr/renderables/VXRShape.h>

namespace vxr {

/// A regular polygon with its vertices on a circle, the first to the right of the middle. A changed
/// parameter makes the path anew and keeps the transform.
class VXR_EXPORT VXRRegularPolygon : public VXRShape {
public:
    static std::shared_ptr<VXRRegularPolygon> regularPolygonWithRadiusNumberOfSides(
        float radius, int numberOfSides);

    /// Takes any number of sides, where the setter takes at least 3.
    VXRRegularPolygon(float radius, int numberOfSides);

    int numberOfSides() const { return mNumSides; }
    void setNumberOfSides(int number); ///< at least 3
    float radius() const { return mRadius; }
    void setRadius(float radius);

private:
    void _rebuildPath();

    int mNumSides;
    float mRadius;
};

} // namespace vxr
