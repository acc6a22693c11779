#pragma once

#include <vxr/platform/graphics/path/Path.h>

#include <string>

namespace vxr {

struct ColorValue;
class Pattern;
class Shading;

// The words in which a recording writes what was drawn.
namespace recorded {

/// Up to four decimals, no trailing zeros, never -0.
VXR_EXPORT std::string text(float);
VXR_EXPORT std::string text(Point);
VXR_EXPORT std::string text(const Rect&);
VXR_EXPORT std::string text(const AffineTransform&);
VXR_EXPORT std::string text(const LineStyle&); ///< what is the default is left out
VXR_EXPORT std::string text(const Path&); ///< `[M0 0 L10 0 C1 2 3 4 5 6 Z]`
VXR_EXPORT std::string text(const ColorValue&); ///< red, green, blue, alpha as the output takes them
VXR_EXPORT std::string text(const Pattern&, float alpha);
VXR_EXPORT std::string text(const Shading&);

} // namespace recorded

} // namespace vxr
