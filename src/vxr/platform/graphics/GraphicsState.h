#pragma once

#include <vxr/platform/graphics/Context.h>
#include <vxr/platform/graphics/DeviceBox.h>

#include <array>
#include <memory>

namespace vxr {

/// What fills or strokes: a colour, or a pattern whose alpha is the colour's.
struct Paint {
    std::array<float, 4> rgba { 0, 0, 0, 1 };
    std::shared_ptr<const Pattern> pattern;
};

/// A shadow in base space. Without a colour there is none.
struct ShadowStyle {
    Size offset;
    float blur = 0;
    std::array<float, 4> rgba {};

    bool isVisible() const { return rgba[3] > 0; }
};

/// Everything that a save keeps and that is the same in every engine. The clip's exact form is the engine's.
struct GraphicsState {
    AffineTransform transform; ///< user space to device space, y up
    bool drawable = true; ///< the transform has an inverse
    DeviceBox clip; ///< encloses the clip
    bool clipIsPixels = true; ///< the clip is all of the box, and that has whole coordinates
    DeviceBox layerReach; ///< that layers extend to at the sides
    Paint fill, stroke;
    LineStyle line;
    float flatness = Path::defaultFlatness;
    float alpha = 1;
    CompositeOperation operation = CompositeOperation::SourceOver;
    bool antialias = true;
    InterpolationQuality quality = InterpolationQuality::Default;
    ShadowStyle shadow;

    bool castsShadow() const { return shadow.isVisible() && operation != CompositeOperation::Clear; }
};

} // namespace vxr
