#pragma once

#include <vxr/platform/graphics/Context.h>
#include <vxr/platform/graphics/cairo/CairoHandles.h>

namespace vxr {

/// From a space mapped by `t` into device space, y up, to cairo's, whose y runs down from `height`.
inline cairo_matrix_t cairoMatrix(const AffineTransform& t, double height)
{
    return { t.m11, -t.m12, t.m21, -t.m22, t.tX, height - t.tY };
}

/// What fills or strokes: a colour, or a pattern whose alpha is the colour's.
struct CairoPaint {
    std::array<float, 4> rgba { 0, 0, 0, 1 };
    std::shared_ptr<const Pattern> pattern;
};

/// A shadow in base space. Without a colour there is none.
struct CairoShadowStyle {
    Size offset;
    float blur = 0;
    std::array<float, 4> rgba {};

    bool isVisible() const { return rgba[3] > 0; }
};

/// Everything that a save keeps. The clip itself is kept by cairo, in step with the stack of states.
struct CairoState {
    AffineTransform transform; ///< user space to device space, y up
    cairo_matrix_t matrix; ///< user space to cairo's device space, y down
    bool drawable = true; ///< the transform has an inverse
    DeviceBox clip; ///< encloses the clip
    bool clipIsPixels = true; ///< the clip is all of the box, and that has whole coordinates
    DeviceBox layerReach; ///< that layers extend to at the sides
    CairoPaint fill, stroke;
    LineStyle line;
    float flatness = Path::defaultFlatness;
    float alpha = 1;
    CompositeOperation operation = CompositeOperation::SourceOver;
    bool antialias = true;
    InterpolationQuality quality = InterpolationQuality::Default;
    CairoShadowStyle shadow;

    bool castsShadow() const { return shadow.isVisible() && operation != CompositeOperation::Clear; }
    cairo_antialias_t cairoAntialias() const
    {
        return antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE;
    }
    /// cairo's default of 0.1 pixels for the usual flatness; the flatness itself is an upper bound.
    double tolerance() const { return std::clamp(static_cast<double>(flatness) / 6, 0.01, 100.0); }
};

} // namespace vxr
