#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/values/Geometry.h>

#include <string>
#include <vector>

namespace vxr {

/// One form of a picture. Draws itself into the current graphics context.
class VXR_EXPORT ImageRep : public Object {
public:
    ~ImageRep() override;

    virtual Size size() const = 0; ///< points
    /// The picture's top at the rectangle's largest y. False when there is nothing to draw.
    virtual bool drawInRect(const Rect&) const = 0;
};

/// Extensions in lower and upper case and HFS types in single quotes of all files that a picture can be made
/// of, EPS included. Empty while there is no import program.
VXR_EXPORT std::vector<std::string> imageUnfilteredFileTypes();

} // namespace vxr
