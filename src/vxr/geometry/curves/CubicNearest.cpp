#include <vxr/geometry/curves/CubicPolynomial.h>
#include <vxr/geometry/curves/CubicSegment.h>

#include <array>

namespace vxr {

namespace {

/// Looks for the least square of the distance from the origin. A sixth of its slope, B . (control
/// differences), is a quintic whose Bernstein coefficients tell where it may change sign, and their sums how
/// near a part can come.
class NearestSearch {
public:
    explicit NearestSearch(const Cubic& curve)
        : mCurve(curve)
    {
        const Vec2 &q0 = curve.start, &q1 = curve.control1, &q2 = curve.control2, &q3 = curve.end;
        const Vec2 d0 = q1 - q0, d1 = q2 - q1, d2 = q3 - q2;
        const double atStart = dot(q0, q0), atEnd = dot(q3, q3);
        consider(0, atStart);
        consider(1, atEnd);
        mNegligible = 1e-15 * std::max({ atStart, dot(q1, q1), dot(q2, q2), atEnd });
        const Part whole { { dot(q0, d0), (2 * dot(q0, d1) + 3 * dot(q1, d0)) / 5,
                               (dot(q0, d2) + 6 * dot(q1, d1) + 3 * dot(q2, d0)) / 10,
                               (3 * dot(q1, d2) + 6 * dot(q2, d1) + dot(q3, d0)) / 10,
                               (3 * dot(q2, d2) + 2 * dot(q3, d1)) / 5, dot(q3, d2) },
            0, 1, atStart };
        search(whole);
    }

    NearestPoint result() const { return { mBest, std::sqrt(mLeast) }; }

private:
    struct Part {
        std::array<double, 6> slope;
        double from, length;
        double atStart; ///< the square of the distance there
    };

    void search(const Part& whole)
    {
        constexpr int mostHalvings = 64;
        std::array<Part, mostHalvings + 1> pending;
        pending[0] = whole;
        for (int count = 1, left = mostHalvings; count > 0;) {
            const Part part = pending[static_cast<std::size_t>(--count)];
            double square = part.atStart, least = square, change = 0;
            for (const double s : part.slope) {
                square += s * part.length;
                least = std::min(least, square);
                change += std::abs(s) * part.length;
            }
            if (least > mLeast + mNegligible)
                continue;
            int signs = 0;
            for (std::size_t i = 1; i < part.slope.size(); ++i)
                signs += (part.slope[i] < 0) != (part.slope[i - 1] < 0);
            const bool approaches = part.slope.front() < 0;
            // The ends have been looked at.
            if (signs == 0 || (signs == 1 && !approaches))
                continue;
            if (signs == 1 || change <= mNegligible || left == 0) {
                findTurn(part);
                continue;
            }
            --left;
            Part first = part, second = part;
            first.length = second.length = part.length * 0.5;
            second.from += second.length;
            halve(first.slope, second.slope);
            const Vec2 middle = mCurve.at(second.from);
            second.atStart = dot(middle, middle);
            consider(second.from, second.atStart);
            pending[static_cast<std::size_t>(count++)] = second;
            pending[static_cast<std::size_t>(count++)] = first;
        }
    }

    /// De Casteljau's scheme; both begin as the whole.
    static void halve(std::array<double, 6>& first, std::array<double, 6>& second)
    {
        for (std::size_t level = 1; level < second.size(); ++level) {
            for (std::size_t i = 0; i + level < second.size(); ++i)
                second[i] = (second[i] + second[i + 1]) * 0.5;
            first[level] = second[0];
        }
    }

    /// Newton's steps, and halving where one leaves the bracket.
    void findTurn(const Part& part)
    {
        double low = part.from, high = part.from + part.length;
        // Where the chord of the slopes crosses zero, within the part.
        const double ends = part.slope.front() - part.slope.back();
        const double guess = ends < 0 ? part.slope.front() / ends : 0.5;
        double t = low + part.length * std::clamp(guess, 0.01, 0.99);
        for (int i = 0; i < 60; ++i) {
            const Vec2 at = mCurve.at(t), d = mCurve.derivative(t);
            const double slope = dot(at, d);
            (slope < 0 ? low : high) = t;
            double next = t - slope / (dot(d, d) + dot(at, mCurve.secondDerivative(t)));
            if (!(next > low && next < high))
                next = (low + high) * 0.5;
            const bool settled = std::abs(next - t) < 1e-9;
            t = next;
            if (settled)
                break;
        }
        const Vec2 at = mCurve.at(t);
        consider(t, dot(at, at));
    }

    void consider(double t, double square)
    {
        if (square < mLeast || (square == mLeast && t < mBest)) {
            mLeast = square;
            mBest = t;
        }
    }

    CubicPolynomial mCurve;
    double mNegligible = 0; ///< difference of squares
    double mLeast = INFINITY, mBest = 0;
};

} // namespace

NearestPoint nearestPoint(const Cubic& c, Vec2 p)
{
    if (!isFinite(c) || !std::isfinite(p.x) || !std::isfinite(p.y))
        return { 0, INFINITY };
    return NearestSearch({ c.start - p, c.control1 - p, c.control2 - p, c.end - p }).result();
}

} // namespace vxr
