#pragma once

#include "CssColor.h"
#include "StyleSheet.h"
#include "Values.h"

#include <string>
#include <vector>

namespace app::svg {

enum class FillRule { NonZero, EvenOdd };
enum class Cap { Butt, Round, Square };
enum class Join { Miter, Round, Bevel };

/// What `fill` or `stroke` says, before references are looked up.
struct PaintValue {
    enum class Kind { None, Color, CurrentColor, Reference, ContextFill, ContextStroke };

    Kind kind = Kind::None;
    Rgba color; ///< of a Color
    std::string reference; ///< id behind a Reference
    Kind fallback = Kind::None; ///< None, Color (in `color`) or CurrentColor, when the reference is broken
};

/// The computed style of one element. Lengths are user units.
struct Style {
    // Inherited.
    Rgba color;
    PaintValue fill { PaintValue::Kind::Color, {}, {}, {} };
    PaintValue stroke;
    FillRule fillRule = FillRule::NonZero;
    FillRule clipRule = FillRule::NonZero;
    double fillOpacity = 1;
    double strokeOpacity = 1;
    double strokeWidth = 1;
    Cap cap = Cap::Butt;
    Join join = Join::Miter;
    double miterLimit = 4;
    std::vector<double> dash; ///< an even number of lengths, not all zero; empty is solid
    double dashOffset = 0;
    bool isVisible = true;
    double fontSize = 16;
    std::string markerStart, markerMid, markerEnd; ///< ids, empty for none

    // Of this element alone.
    double opacity = 1;
    bool isDisplayed = true;
    std::string clipPath; ///< id, empty for none
    bool overflowVisible = false; ///< whether an element's own viewport doesn't clip
    bool scalesStroke = true; ///< false for `vector-effect: non-scaling-stroke`
    std::optional<Matrix> transform; ///< of the CSS property, which overrides the attribute
    Rgba stopColor { 0, 0, 0, 1 };
    double stopOpacity = 1;
};

/// The size that percentages refer to.
struct Viewport {
    double width = 100;
    double height = 100;

    double diagonal() const; ///< the measure for lengths that are neither widths nor heights
};

/// Called with a property and what is wrong with its value, which then changes nothing.
using StyleComplaint = std::function<void(Property, const std::string& warning)>;

/// The style of an element with `declarations` inside one of style `parent`.
Style computeStyle(const Style& parent, const Declarations&, const Viewport&, const StyleComplaint&);

/// The id in `url(#id)`, quotes allowed; empty when the text is something else.
std::string referencedId(std::string_view);

} // namespace app::svg
