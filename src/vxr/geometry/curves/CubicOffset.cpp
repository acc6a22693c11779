#include <vxr/geometry/curves/CubicOffset.h>

#include <vxr/geometry/curves/CubicPolynomial.h>
#include <vxr/geometry/curves/CubicSegment.h>
#include <vxr/geometry/curves/PolynomialRoots.h>

#include <array>
#include <numbers>

namespace vxr {

namespace {

constexpr std::size_t mostPieces = 256;

class CurveOffset {
public:
    CurveOffset(const Cubic& curve, double distance, double tolerance, std::vector<Cubic>& pieces)
        : mCurve(curve)
        , mDistance(distance)
        , mTolerance(tolerance)
        , mPieces(pieces)
    {
        const Extent e = extentOf(curve);
        mNegligible = 1e-6 * (e.most - e.least).length();
    }

    void run()
    {
        // The bend changes at inflections, and the offset turns back where the radius of curvature is the
        // distance: neither is for one cubic to follow.
        std::vector<double> stops = inflectionsOf(mCurve);
        const std::vector<double> cusps = cuspsOf(mCurve);
        stops.insert(stops.end(), cusps.begin(), cusps.end());
        addSlowest(stops);
        addTurnsBack(stops);
        stops.push_back(1);
        std::sort(stops.begin(), stops.end());
        double from = 0;
        for (const double to : stops) {
            if (to - from < 1e-7)
                continue;
            // Directions at a cusp are those of the curve on this side of it.
            mFrom = from;
            mTo = to;
            goAroundCusp(from);
            approximate(from, to, 0);
            from = to;
        }
    }

private:
    struct Place {
        Vec2 p, direction;
    };

    /// Of the true offset; the direction is the curve's own.
    Place placeAt(double t) const
    {
        const double nudge = stopsAt(t) ? (mTo - mFrom) * 1e-6 : 0;
        const Vec2 direction = directionAt(mCurve, std::clamp(t, mFrom + nudge, mTo - nudge));
        return { pointAt(mCurve, t) + leftNormal(direction) * mDistance, direction };
    }

    /// Positive while the offset runs the same way as the curve.
    double forwardness(double t) const
    {
        const Vec2 d = derivativeAt(mCurve, t);
        const double speed = d.length();
        return speed * speed * speed - mDistance * cross(d, secondDerivativeAt(mCurve, t));
    }

    /// Near where the pen all but stops it turns so fast that evenly spaced places see nothing of it.
    void addSlowest(std::vector<double>& stops) const
    {
        const CubicPolynomial q(mCurve);
        for (const double t : PolynomialRoots(q.speedSlope())) {
            const double speed = q.derivative(t).length();
            if (speed > mNegligible && speed < 3e5 * mNegligible)
                for (const double by : { -0.02, 0.0, 0.02 })
                    if (t + by > 0 && t + by < 1)
                        stops.push_back(t + by);
        }
    }

    void addTurnsBack(std::vector<double>& stops) const
    {
        constexpr int places = 32;
        double before = forwardness(0);
        for (int i = 1; i <= places; ++i) {
            const double t = double(i) / places, after = forwardness(t);
            if ((before < 0) != (after < 0)) {
                double low = t - 1.0 / places, high = t;
                for (int round = 0; round < 50; ++round) {
                    const double middle = (low + high) * 0.5;
                    ((forwardness(middle) < 0) == (before < 0) ? low : high) = middle;
                }
                stops.push_back(low);
            }
            before = after;
        }
    }

    void goAroundCusp(double t)
    {
        if (mPieces.empty() || !stopsAt(t))
            return;
        const Vec2 before = leftNormal(mLastDirection) * sign(),
                   after = leftNormal(placeAt(t).direction) * sign();
        for (const Cubic& arc : arcBetween(pointAt(mCurve, t), std::abs(mDistance), before, after))
            mPieces.push_back(arc);
    }

    bool stopsAt(double t) const { return derivativeAt(mCurve, t).length() <= mNegligible; }

    double sign() const { return mDistance < 0 ? -1 : 1; }

    void approximate(double from, double to, int depth)
    {
        const Place a = placeAt(from), b = placeAt(to);
        const double middle = (from + to) * 0.5;
        const double way = forwardness(middle) < 0 ? -1 : 1;
        const Cubic fitted = fit(a, b, from, to, way);
        constexpr int mostDepth = 8;
        if (depth < mostDepth && mPieces.size() + 2 < mostPieces && !keeps(fitted, from, to)) {
            approximate(from, middle, depth + 1);
            approximate(middle, to, depth + 1);
            return;
        }
        mPieces.push_back(fitted);
        mLastDirection = b.direction;
    }

    /// Arms along the tangents, of the lengths for which the piece passes nearest to the true offset at some
    /// places between.
    Cubic fit(const Place& a, const Place& b, double from, double to, double way) const
    {
        const Vec2 arm1 = a.direction * way, arm2 = b.direction * -way;
        double s11 = 0, s12 = 0, s22 = 0, r1 = 0, r2 = 0;
        // The arms' lengths were the curve to bend evenly: what the places' parameters are taken from. Beside
        // a cusp, where the bend has no bounds, a third of the way.
        const double third = (to - from) / 3, chord = (b.p - a.p).length(), most = 4 * chord;
        const auto guess = [&](double t) {
            const double arm = derivativeAt(mCurve, t).length() * third * std::abs(1 - mDistance * bendAt(t));
            return arm <= most ? arm : chord / 3;
        };
        const double guess1 = guess(from), guess2 = guess(to);
        Cubic curve { a.p, a.p + arm1 * guess1, b.p + arm2 * guess2, b.p };
        for (int round = 0; round < 2; ++round) {
            s11 = s12 = s22 = r1 = r2 = 0;
            constexpr int places = 7;
            for (int i = 1; i <= places; ++i) {
                const double u = double(i) / (places + 1);
                const Vec2 target = placeAt(from + (to - from) * u).p;
                const double t = nearestPoint(curve, target).t, s = 1 - t;
                const double b1 = 3 * s * s * t, b2 = 3 * s * t * t;
                const Vec2 rest = target - a.p * (s * s * s + b1) - b.p * (t * t * t + b2);
                s11 += b1 * b1;
                s12 += b1 * b2 * dot(arm1, arm2);
                s22 += b2 * b2;
                r1 += b1 * dot(arm1, rest);
                r2 += b2 * dot(arm2, rest);
            }
            const double determinant = s11 * s22 - s12 * s12;
            if (!(std::abs(determinant) > 1e-12 * s11 * s22))
                break;
            const double x = (r1 * s22 - r2 * s12) / determinant, y = (r2 * s11 - r1 * s12) / determinant;
            if (!(x >= 0 && y >= 0 && x <= most && y <= most))
                break;
            curve.control1 = a.p + arm1 * x;
            curve.control2 = b.p + arm2 * y;
        }
        return curve;
    }

    double bendAt(double t) const
    {
        const double bend = curvatureAt(mCurve, t);
        return std::isfinite(bend) ? bend : 0;
    }

    bool keeps(const Cubic& fitted, double from, double to) const
    {
        constexpr int places = 21;
        for (int i = 1; i < places; ++i)
            if (!(nearestPoint(fitted, placeAt(from + (to - from) * i / places).p).distance
                    <= mTolerance * 0.75))
                return false;
        return true;
    }

    const Cubic& mCurve;
    double mDistance, mTolerance;
    double mNegligible; ///< derivative
    std::vector<Cubic>& mPieces;
    double mFrom = 0, mTo = 1; ///< around the smooth part that is being followed
    Vec2 mLastDirection;
};

} // namespace

std::vector<Cubic> arcBetween(Vec2 center, double radius, Vec2 from, Vec2 to)
{
    std::vector<Cubic> arcs;
    const double angle = std::atan2(cross(from, to), dot(from, to));
    if (!(angle != 0) || !std::isfinite(radius))
        return arcs;
    const int count = static_cast<int>(std::ceil(std::abs(angle) / (std::numbers::pi / 2) - 1e-9));
    const double step = angle / count, arm = 4.0 / 3 * std::tan(step / 4) * radius;
    Vec2 at = from;
    for (int i = 1; i <= count; ++i) {
        const double turned = step * i;
        const Vec2 next = i == count ? to
                                     : Vec2(from.x * std::cos(turned) - from.y * std::sin(turned),
                                         from.x * std::sin(turned) + from.y * std::cos(turned));
        const Vec2 start = center + at * radius, end = center + next * radius;
        arcs.push_back({ start, start + leftNormal(at) * arm, end - leftNormal(next) * arm, end });
        at = next;
    }
    return arcs;
}

std::vector<Cubic> offsetCurves(const Cubic& curve, double distance, double tolerance)
{
    std::vector<Cubic> pieces;
    if (!isFinite(curve) || !std::isfinite(distance))
        return pieces;
    const Extent extent = extentOf(curve);
    const double size = std::max(extent.most.x - extent.least.x, extent.most.y - extent.least.y);
    if (!(size > 0))
        return pieces;
    if (isStraight(curve, 0) || distance == 0) {
        const Vec2 normal = leftNormal(directionAt(curve, 0)) * distance;
        return { { curve.start + normal, curve.control1 + normal, curve.control2 + normal,
            curve.end + normal } };
    }
    const double least = 0x1p-24 * (size + std::abs(distance));
    CurveOffset(curve, distance, tolerance > least ? tolerance : least, pieces).run();
    return pieces;
}

} // namespace vxr
