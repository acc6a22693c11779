#pragma once

#include <vxr/platform/graphics/values/AffineTransform.h>

#include <memory>
#include <string>

// Additions to AffineTransform.

namespace vxr {

class Path;

/// A transformed copy of the path, with its style unchanged.
VXR_EXPORT std::shared_ptr<Path> transformBezierPath(const AffineTransform& transform, const Path& path);

/// The mapped corners, named for a view with y downwards: upper left is (x, y), lower left
/// (x, y + height).
VXR_EXPORT void transformRectUpperLeftLowerLeftLowerRightUpperRight(const AffineTransform& transform,
    const Rect& rect, Point& upperLeft, Point& lowerLeft, Point& lowerRight, Point& upperRight);

/// Bounds of the four mapped corners.
VXR_EXPORT Rect boundsOfTransformedRect(const AffineTransform& transform, const Rect& rect);

/// Exact comparison of the six components; NaN is unequal to everything.
VXR_EXPORT bool differsFrom(const AffineTransform& transform, const AffineTransform& other);

/// Whether the linear parts are exactly equal. Translations are ignored.
VXR_EXPORT bool differOnlyByTranslation(const AffineTransform& transform, const AffineTransform& other);

/// Shears before `transform`: x' = x + sy y, y' = sx x + y.
VXR_EXPORT void shearXByYBy(AffineTransform& transform, float sx, float sy);

/// "{m11, m12, m21, m22, tX, tY}", with six decimals each.
VXR_EXPORT std::string description(const AffineTransform& transform);

// The same text, for logs.
VXR_EXPORT std::string VXRStringFromTransform(const AffineTransform& transform);
VXR_EXPORT std::string VXRStringFromCGTransform(float a, float b, float c, float d, float tx, float ty);
VXR_EXPORT std::string VXRStringFromCGTransform(const AffineTransform& transform);

} // namespace vxr
