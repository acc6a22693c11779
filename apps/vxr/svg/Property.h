#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace app::svg {

/// The known properties, by name. Some have an effect that the model can't show; they are listed so that
/// their use can be reported.
enum class Property {
    Animation,
    AnimationName,
    BackdropFilter,
    Clip,
    ClipPath,
    ClipRule,
    Color,
    ColorInterpolation,
    Cx,
    Cy,
    D,
    Display,
    Fill,
    FillOpacity,
    FillRule,
    Filter,
    FontSize,
    Height,
    MarkerEnd,
    MarkerMid,
    MarkerStart,
    Mask,
    MixBlendMode,
    OffsetPath,
    Opacity,
    Overflow,
    PaintOrder,
    R,
    Rotate,
    Rx,
    Ry,
    Scale,
    ShapeRendering,
    StopColor,
    StopOpacity,
    Stroke,
    StrokeDasharray,
    StrokeDashoffset,
    StrokeLinecap,
    StrokeLinejoin,
    StrokeMiterlimit,
    StrokeOpacity,
    StrokeWidth,
    Transform,
    TransformOrigin,
    Translate,
    VectorEffect,
    Visibility,
    Width,
    X,
    Y,
};
inline constexpr std::size_t propertyCount = static_cast<std::size_t>(Property::Y) + 1;

std::optional<Property> propertyNamed(std::string_view name);
/// The same for a presentation attribute. Some properties have none, or an attribute with another grammar.
std::optional<Property> propertyOfAttribute(std::string_view name);
std::string_view nameOf(Property);

} // namespace app::svg
