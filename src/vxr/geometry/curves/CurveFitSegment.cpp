#include <vxr/geometry/curves/CurveFitSegment.h>

#include <vxr/geometry/curves/CubicPolynomial.h>
#include <vxr/geometry/curves/CubicSegment.h>

#include <array>

namespace vxr {

namespace {

/// Solves the symmetric system of the least squares. False when it is (nearly) singular.
bool solveSymmetric(std::array<std::array<double, 4>, 4>& a, std::array<double, 4>& b, int count)
{
    for (int i = 0; i < count; ++i) {
        const auto at = static_cast<std::size_t>(i);
        if (!(a[at][at] > 1e-12))
            return false;
        for (auto row = at + 1; row < static_cast<std::size_t>(count); ++row) {
            const double factor = a[row][at] / a[at][at];
            for (auto column = at; column < static_cast<std::size_t>(count); ++column)
                a[row][column] -= factor * a[at][column];
            b[row] -= factor * b[at];
        }
    }
    for (int i = count - 1; i >= 0; --i) {
        const auto at = static_cast<std::size_t>(i);
        for (auto column = at + 1; column < static_cast<std::size_t>(count); ++column)
            b[at] -= a[at][column] * b[column];
        b[at] /= a[at][at];
    }
    return true;
}

/// A step towards the parameter of the point of the curve that is nearest to `p`.
double nearer(const CubicPolynomial& q, Vec2 p, double t)
{
    const Vec2 offset = q.at(t) - p, d = q.derivative(t);
    const double slope = dot(d, d) + dot(offset, q.secondDerivative(t));
    const double next = slope > 0 ? t - dot(offset, d) / slope : t;
    return std::clamp(next, 0.0, 1.0);
}

double distanceToLine(Vec2 p, Vec2 a, Vec2 b)
{
    const Vec2 line = b - a, w = p - a;
    const double squared = dot(line, line);
    const double along = squared > 0 ? std::clamp(dot(w, line) / squared, 0.0, 1.0) : 0;
    return (w - line * along).length();
}

} // namespace

CurveFitSegment::CurveFitSegment(
    double tolerance, bool keepsToLine, std::span<const FitPoint> points, std::span<const double> lengths)
    : mTolerance(tolerance)
    , mStrayPerGap(keepsToLine ? 0 : 0.25)
    , mPoints(points)
    , mLengths(lengths)
{
}

std::optional<Cubic> CurveFitSegment::fit(std::size_t first, std::size_t last, Vec2 leaving, Vec2 arriving)
{
    const Vec2 start = mPoints[first].p, end = mPoints[last].p;
    const double length = mLengths[last] - mLengths[first];
    if (last == first + 1) {
        // Nothing lies between: the tangents decide, as long as they are those of a gentle curve.
        const Vec2 chord = end - start;
        const double least = 0.5 * chord.length();
        Cubic curve = cubicFromLine(start, end);
        if (leaving != Vec2() && dot(leaving, chord) > least)
            curve.control1 = start + leaving * (length / 3);
        if (arriving != Vec2() && dot(arriving, chord) > least)
            curve.control2 = end - arriving * (length / 3);
        return isNear(curve, 0, 1, start, end) ? curve : cubicFromLine(start, end);
    }

    mSamples.clear();
    mIndices.clear();
    const std::size_t count = last - first + 1, samples = std::min(count, mostSamples);
    for (std::size_t i = 0; i < samples; ++i) {
        const std::size_t at = first + i * (count - 1) / (samples - 1);
        mSamples.push_back({ mPoints[at].p, (mLengths[at] - mLengths[first]) / length });
        mIndices.push_back(at);
    }
    constexpr int mostRounds = 8;
    double before = INFINITY;
    for (int round = 0; round < mostRounds; ++round) {
        const auto curve = solve(start, end, leaving, arriving, length);
        if (!curve)
            return {};
        const double off = improveParameters(*curve);
        if (off <= mTolerance && keepsTolerance(*curve, last))
            return curve;
        // Hopeless, or getting nowhere.
        if (off > (round == 0 ? 8 : 3) * mTolerance || (round > 1 && off > 0.95 * before))
            return {};
        before = off;
    }
    return {};
}

std::optional<Cubic> CurveFitSegment::solve(
    Vec2 start, Vec2 end, Vec2 leaving, Vec2 arriving, double length) const
{
    // The unknowns are an arm's length where the tangent is known, and both coordinates of the control
    // point, taken from its end, where it isn't.
    std::array<std::array<double, 4>, 4> normal {};
    std::array<double, 4> right {};
    std::array<Vec2, 4> axis {};
    std::array<bool, 4> ofStart {};
    int unknowns = 0;
    const auto addUnknowns = [&](Vec2 tangent, bool isStart) {
        for (const Vec2& v : { tangent != Vec2() ? tangent : Vec2(1, 0), Vec2(0, 1) }) {
            axis[static_cast<std::size_t>(unknowns)] = v;
            ofStart[static_cast<std::size_t>(unknowns)] = isStart;
            ++unknowns;
            if (tangent != Vec2())
                break;
        }
    };
    addUnknowns(leaving, true);
    addUnknowns(-arriving, false);
    const auto count = static_cast<std::size_t>(unknowns);
    double s11 = 0, s12 = 0, s22 = 0;
    Vec2 rest1, rest2;
    for (const Sample& sample : mSamples) {
        const double t = sample.t, s = 1 - t;
        const double b1 = 3 * s * s * t, b2 = 3 * s * t * t;
        const Vec2 rest = sample.p - start * (s * s * s + b1) - end * (t * t * t + b2);
        s11 += b1 * b1;
        s12 += b1 * b2;
        s22 += b2 * b2;
        rest1 = rest1 + rest * b1;
        rest2 = rest2 + rest * b2;
    }
    for (std::size_t i = 0; i < count; ++i) {
        right[i] = dot(axis[i], ofStart[i] ? rest1 : rest2);
        for (std::size_t j = 0; j < count; ++j)
            normal[i][j] = dot(axis[i], axis[j]) * (ofStart[i] != ofStart[j] ? s12 : ofStart[i] ? s11 : s22);
    }
    Vec2 arm1, arm2;
    if (solveSymmetric(normal, right, unknowns))
        for (std::size_t i = 0; i < count; ++i)
            (ofStart[i] ? arm1 : arm2) = (ofStart[i] ? arm1 : arm2) + axis[i] * right[i];

    // Arms that point backwards or reach past everything draw loops.
    const double most = 1.5 * length, least = 1e-6 * length;
    const auto sound = [&](Vec2 arm, Vec2 tangent) {
        const double size = arm.length();
        return size <= most && (tangent == Vec2() || dot(arm, tangent) > least);
    };
    const auto usual = [&](Vec2 tangent, Vec2 towards) {
        const double third = (end - start).length() / 3;
        return tangent != Vec2() ? tangent * third : towards * (1.0 / 3);
    };
    if (!sound(arm1, leaving) || !sound(arm2, -arriving)) {
        arm1 = usual(leaving, end - start);
        arm2 = usual(-arriving, start - end);
    }
    return Cubic { start, start + arm1, end + arm2, end };
}

/// Answers how far the worst of the samples is off.
double CurveFitSegment::improveParameters(const Cubic& curve)
{
    const CubicPolynomial q(curve);
    double worst = 0;
    for (std::size_t i = 1; i + 1 < mSamples.size(); ++i) {
        Sample& sample = mSamples[i];
        sample.t = nearer(q, sample.p, sample.t);
        worst = std::max(worst, (q.at(sample.t) - sample.p).length());
    }
    return worst;
}

/// Every point near the curve, and the curve near the points between them.
bool CurveFitSegment::keepsTolerance(const Cubic& curve, std::size_t last) const
{
    const CubicPolynomial q(curve);
    double before = 0;
    for (std::size_t s = 0; s + 1 < mSamples.size(); ++s) {
        const std::size_t from = mIndices[s], to = mIndices[s + 1];
        const double span = mLengths[to] - mLengths[from], t0 = mSamples[s].t, t1 = mSamples[s + 1].t;
        for (std::size_t i = from + 1; i <= to; ++i) {
            double t = t0 + (t1 - t0) * (mLengths[i] - mLengths[from]) / span;
            if (i != last) {
                t = nearer(q, mPoints[i].p, t);
                if ((q.at(t) - mPoints[i].p).length() > mTolerance) {
                    t = nearer(q, mPoints[i].p, nearer(q, mPoints[i].p, t));
                    if (!((q.at(t) - mPoints[i].p).length() <= mTolerance))
                        return false;
                }
            }
            // Not straying in a gap, nor running back.
            if (t < before - 1e-3 || !isNear(curve, before, t, mPoints[i - 1].p, mPoints[i].p))
                return false;
            before = t;
        }
    }
    return true;
}

bool CurveFitSegment::isNear(const Cubic& curve, double from, double to, Vec2 a, Vec2 b) const
{
    const Vec2 step = b - a;
    // The curve passes both points; between such near ones it has no room to stray.
    if (dot(step, step) <= 4 * mTolerance * mTolerance)
        return true;
    const double gap = step.length(), most = mTolerance + mStrayPerGap * gap;
    const int places = gap <= 8 * mTolerance ? 1 : 7;
    for (int i = 1; i <= places; ++i) {
        const double t = from + (to - from) * i / (places + 1);
        if (!(distanceToLine(pointAt(curve, t), a, b) <= most))
            return false;
    }
    return true;
}

} // namespace vxr
