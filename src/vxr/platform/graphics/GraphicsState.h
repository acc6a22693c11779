#pragma once

#include <vxr/platform/graphics/Context.h>
#include <vxr/platform/graphics/DeviceBox.h>

#include <array>
#include <memory>

namespace vxr {

/// A fill or stroke paint: a colour, or a pattern that uses the colour's alpha.
struct Paint {
    std::array<float, 4> rgba { 0, 0, 0, 1 };
    std::shared_ptr<const Pattern> pattern;
};

/// A shadow in base space. Without a colour there is no shadow.
struct ShadowStyle {
    Size offset;
    float blur = 0;
    std::array<float, 4> rgba {};

    bool isVisible() const { return rgba[3] > 0; }
};

/// The saved state that is the same in every engine. The exact form of the clip belongs to the engine.
struct GraphicsState {
    AffineTransform transform; ///< user space to device space, y up
    bool drawable = true; ///< whether the transform is invertible
    DeviceBox clip; ///< bounds of the clip
    bool clipIsPixels = true; ///< the clip is the whole box, which has integer edges
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
