#pragma once

#include <vxr/platform/graphics/path/PathVector.h>

#include <array>
#include <cstddef>

namespace vxr {

/// Replaces curves by lines within a tolerance, by bisecting whatever is not yet flat. At most 2^13 lines per
/// curve. Once `mostLines` lines exist, which takes hostile coordinates or tolerances, the remaining curves
/// become 8 lines at most.
class CurveFlattener {
public:
    CurveFlattener(double tolerance, std::size_t mostLines)
        : mTolerance(tolerance > 0 ? tolerance : 0)
        , mLinesLeft(mostLines)
    {
    }

    /// Calls `emit(piece)` for each flat piece in order; its end is the next vertex. The control points must
    /// be finite.
    template <class Emit> void flatten(const Cubic& curve, Emit emit)
    {
        struct Pending {
            Cubic curve;
            int depth;
        };
        std::array<Pending, mostDepth + 1> stack;
        std::size_t pending = 0;
        stack[pending++] = { curve, 0 };
        const double limit = limitFor(curve);
        const int depth = mLinesLeft > 0 ? mostDepth : 3;
        while (pending > 0) {
            const Pending top = stack[--pending];
            if (top.depth >= depth || isFlat(top.curve, limit)) {
                mLinesLeft -= mLinesLeft > 0;
                emit(top.curve);
                continue;
            }
            const auto [first, second] = top.curve.halves();
            stack[pending++] = { second, top.depth + 1 };
            stack[pending++] = { first, top.depth + 1 };
        }
    }

private:
    static constexpr int mostDepth = 13;

    /// The value `isFlat` compares with: the square of four times the tolerance, or of the spacing of single
    /// precision at the curve's coordinates if that is larger.
    double limitFor(const Cubic& curve) const;

    /// Whether every point of the piece is within the tolerance of its chord.
    static bool isFlat(const Cubic& c, double limit)
    {
        // Between its ends a cubic deviates from its chord by at most 3/4 of its control points' distance, if
        // these project onto the chord and not beyond its ends.
        const Vec2 chord = c.end - c.start, a = c.control1 - c.start, b = c.control2 - c.start;
        const double squared = dot(chord, chord), alongA = dot(a, chord), alongB = dot(b, chord);
        if (squared > 0 && alongA >= 0 && alongA <= squared && alongB >= 0 && alongB <= squared) {
            const double offset = 3 * std::max(std::abs(cross(a, chord)), std::abs(cross(b, chord)));
            return offset * offset <= limit * squared;
        }
        // Otherwise compare with the chord traversed uniformly: the deviation is at most a quarter of these
        // distances.
        const Vec2 u = c.control1 * 3 - c.start * 2 - c.end, v = c.control2 * 3 - c.end * 2 - c.start;
        return std::max(u.x * u.x, v.x * v.x) + std::max(u.y * u.y, v.y * v.y) <= limit;
    }

    double mTolerance;
    std::size_t mLinesLeft;
};

} // namespace vxr
