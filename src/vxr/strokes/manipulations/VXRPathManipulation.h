#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/path/Path.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace vxr {

/// A line that is stroked, or an area that is filled by the nonzero rule.
struct VXRPaintedPath {
    std::shared_ptr<Path> path; ///< never none, and not changed by whoever gets it
    bool isArea = false;
    float widthFactor = 1; ///< of a line: times the stroke's width
};

/// What manipulations and strokers know of the stroke.
struct VXRStrokeSetting {
    float lineWidth = 1; ///< canvas units
    float scale = 1; ///< device pixels per canvas unit
    LineJoin join = LineJoin::Miter;
};

/// One step that a stroke's outline goes through before it is painted. A value: copied, compared, not changed
/// once a stroke has it. The same outline, setting and seed give the same result.
///
/// Lengths are in units of the line width, as those of dash patterns are: a stroke of another width looks the
/// same at another size. Parameters that are not finite count as 0; with all of them 0 a step changes
/// nothing. What would take more than a hundred thousand pieces is done in coarser ones.
class VXR_EXPORT VXRPathManipulation : public Object {
public:
    /// Lines become lines or areas. Areas stay areas; steps for lines leave them as they are.
    virtual VXRPaintedPath manipulatedPath(const VXRPaintedPath&, const VXRStrokeSetting&) const = 0;
    /// How much further from the outline than the plain stroke's edge the result may be painted, joins not
    /// counted; canvas units.
    virtual float reachForLineWidth(float lineWidth) const = 0;

    virtual std::shared_ptr<VXRPathManipulation> copyWithZone() const = 0;
    bool isEqual(const Object&) const override = 0; ///< the same class with the same parameters
};

/// At the end of a list of manipulations: what is painted along the outline in place of one line.
class VXR_EXPORT VXRPathStroker : public Object {
public:
    /// From back to front.
    virtual std::vector<VXRPaintedPath> paintedPaths(
        const VXRPaintedPath&, const VXRStrokeSetting&) const = 0;
    virtual float reachForLineWidth(float lineWidth) const = 0; ///< as that of a manipulation

    virtual std::shared_ptr<VXRPathStroker> copyWithZone() const = 0;
    bool isEqual(const Object&) const override = 0;
};

} // namespace vxr
