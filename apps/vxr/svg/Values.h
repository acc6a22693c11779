#pragma once

#include "Geometry.h"
#include "Scanner.h"

#include <optional>
#include <string_view>
#include <vector>

namespace app::svg {

enum class Unit { Number, Px, Pt, Pc, Mm, Cm, In, Q, Em, Ex, Percent };

struct Length {
    double value = 0;
    Unit unit = Unit::Number;

    /// In user units of 1/96 inch. `percentOf` is what 100 % stands for.
    double resolved(double percentOf, double fontSize) const;

    friend bool operator==(const Length&, const Length&) = default;
};

/// Reads a number and an optional unit. None for an unknown unit.
std::optional<Length> readLength(Scanner&);
/// Parses the whole text as one length.
std::optional<Length> parseLength(std::string_view);
/// A plain number or a percentage of 1, clamped into [0, 1].
std::optional<double> parseOpacity(std::string_view);
/// An angle in degrees, whatever its unit. A plain number is degrees.
std::optional<double> parseAngle(std::string_view);
/// Lengths separated by white space or commas. None when one can't be read.
std::optional<std::vector<Length>> parseLengthList(std::string_view);

/// A list of `matrix`, `translate`, `scale`, `rotate`, `skewX` and `skewY`, the last one applied first.
/// Angles without a unit are degrees. None when any part can't be read.
std::optional<Matrix> parseTransform(std::string_view);

/// How a viewBox is fitted into a viewport.
struct AspectRatio {
    bool isNone = false; ///< stretched to fill
    double alignX = 0.5, alignY = 0.5; ///< 0 min, 0.5 mid, 1 max
    bool isSlice = false; ///< covers the viewport; otherwise it fits inside
};

std::optional<AspectRatio> parseAspectRatio(std::string_view);
/// Four numbers, the size not negative.
std::optional<Box> parseViewBox(std::string_view);
/// Maps `viewBox` into the viewport from (0, 0) to (width, height). The box must have a
/// positive area.
Matrix viewBoxTransform(const Box& viewBox, double width, double height, const AspectRatio&);

/// The outline up to the first error.
struct PathData {
    Outline outline;
    bool isComplete = true;
    std::size_t errorOffset = 0; ///< in bytes, where parsing stopped
};

/// All commands of a path's `d`. An error ends the path before the segment that it is in.
PathData parsePathData(std::string_view);
/// The points of a polyline or polygon; an odd coordinate at the end is an error.
PathData parsePoints(std::string_view, bool closed);

} // namespace app::svg
