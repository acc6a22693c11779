#pragma once

#include <vxr/platform/graphics/PathVector.h>

#include <array>
#include <cstddef>

namespace vxr {

/// Replaces curves by lines that stay within a tolerance, by halving whatever is not flat yet. Never more
/// than 2^depth lines a curve.
class CurveFlattener {
public:
    static constexpr int mostDepth = 13;

    /// `curves` is how many there are to flatten: very many get fewer lines each, down to 8, so that hostile
    /// coordinates or tolerances can't fill the memory. Their sum stays within `mostLines` as far as that
    /// allows.
    CurveFlattener(double tolerance, std::size_t curves, std::size_t mostLines);

    /// Calls `emit(piece)` with each flat piece in turn; its end is the next vertex. The control points
    /// must be finite.
    template <class Emit> void flatten(const Cubic& curve, Emit emit) const
    {
        struct Pending {
            Cubic curve;
            int depth;
        };
        std::array<Pending, mostDepth + 1> stack;
        std::size_t pending = 0;
        stack[pending++] = { curve, 0 };
        const double limit = limitFor(curve);
        while (pending > 0) {
            const Pending top = stack[--pending];
            if (top.depth >= mDepth || isFlat(top.curve, limit)) {
                emit(top.curve);
                continue;
            }
            const auto [first, second] = top.curve.halves();
            stack[pending++] = { second, top.depth + 1 };
            stack[pending++] = { first, top.depth + 1 };
        }
    }

private:
    /// What `isFlat` compares with: the square of four times the tolerance, or of what single precision can
    /// tell apart at the curve's coordinates when that is more.
    double limitFor(const Cubic& curve) const;

    /// Whether every point of the piece is within the tolerance of its chord, and of the chord only.
    static bool isFlat(const Cubic& c, double limit)
    {
        // Between its ends a cubic departs from its chord by at most 3/4 of what its control points do, as
        // long as these stand beside the chord and not beyond its ends.
        const Vec2 chord = c.end - c.start, a = c.control1 - c.start, b = c.control2 - c.start;
        const double squared = dot(chord, chord), alongA = dot(a, chord), alongB = dot(b, chord);
        if (squared > 0 && alongA >= 0 && alongA <= squared && alongB >= 0 && alongB <= squared) {
            const double offset = 3 * std::max(std::abs(cross(a, chord)), std::abs(cross(b, chord)));
            return offset * offset <= limit * squared;
        }
        // Otherwise compare with the chord run through evenly: the largest distance is at most a quarter of
        // these.
        const Vec2 u = c.control1 * 3 - c.start * 2 - c.end, v = c.control2 * 3 - c.end * 2 - c.start;
        return std::max(u.x * u.x, v.x * v.x) + std::max(u.y * u.y, v.y * v.y) <= limit;
    }

    double mTolerance;
    int mDepth = mostDepth;
};

} // namespace vxr
