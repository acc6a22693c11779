#pragma once

#include <optional>
#include <string_view>

namespace app::svg {

/// An sRGB colour, components and alpha in [0, 1], not premultiplied.
struct Rgba {
    double r = 0, g = 0, b = 0, a = 1;

    friend bool operator==(const Rgba&, const Rgba&) = default;
};

/// A CSS colour: a name, `transparent`, `#rgb`, `#rgba`, `#rrggbb`, `#rrggbbaa`, `rgb()`, `rgba()`, `hsl()`,
/// `hsla()`, `hwb()` in comma and space notation. Components out of range are clamped. None for
/// anything else, `none` and `currentColor` included.
std::optional<Rgba> parseColor(std::string_view);

} // namespace app::svg
