#include <vxr/geometry/tracing/OutlineFitter.h>

#include <vxr/geometry/curves/CubicSegment.h>

#include <numbers>

namespace vxr {

namespace {

Vec2 vec(const PixelCorner& c) { return { double(c.x), double(c.y) }; }

/// Steps between two corners that follow each other.
std::int32_t stepsBetween(const PixelCorner& a, const PixelCorner& b)
{
    return std::abs(a.x - b.x) + std::abs(a.y - b.y);
}

/// The place that many steps along the outline from corner `i`, forwards or backwards.
Vec2 stepsFrom(std::span<const PixelCorner> corners, std::size_t i, std::int32_t steps, bool forwards)
{
    const std::size_t count = corners.size();
    for (;;) {
        const std::size_t next = forwards ? (i + 1 == count ? 0 : i + 1) : (i == 0 ? count - 1 : i - 1);
        const std::int32_t run = stepsBetween(corners[i], corners[next]);
        if (run >= steps) {
            const Vec2 from = vec(corners[i]), to = vec(corners[next]);
            return from + (to - from) * (double(steps) / run);
        }
        steps -= run;
        i = next;
    }
}

double turnCosine(std::span<const PixelCorner> corners, std::size_t i, std::int32_t steps)
{
    const Vec2 p = vec(corners[i]), in = p - stepsFrom(corners, i, steps, false),
               out = stepsFrom(corners, i, steps, true) - p;
    const double squares = dot(in, in) * dot(out, out);
    return squares > 0 ? dot(in, out) / std::sqrt(squares) : -1;
}

} // namespace

void OutlineFitter::add(std::span<const PixelCorner> corners)
{
    if (corners.size() <= 4 || mTolerance < 0.5)
        return addExactly(corners);
    findTurns(corners);
    collectPoints(corners);
    fitBetweenTurns();
}

void OutlineFitter::addExactly(std::span<const PixelCorner> corners)
{
    mTarget.moveTo(vec(corners[0]).point());
    for (const PixelCorner& c : corners.subspan(1))
        mTarget.lineTo(vec(c).point());
    mTarget.close();
}

/// The staircase of a slanting line turns by no more than this at a distance of some steps; where the outline
/// turns by more, and as much close by, it has a corner of its own.
void OutlineFitter::findTurns(std::span<const PixelCorner> corners)
{
    constexpr double mostCosine = 0.62, mostCosineNearby = 0.72;
    const std::size_t count = corners.size();
    std::int64_t perimeter = 0;
    for (std::size_t i = 0; i < count; ++i)
        perimeter += stepsBetween(corners[i], corners[i + 1 == count ? 0 : i + 1]);
    const auto window = static_cast<std::int32_t>(std::clamp<std::int64_t>(perimeter / 8, 2, 6));

    mSharpness.assign(count, 0);
    for (std::size_t i = 0; i < count; ++i) {
        const double cosine = turnCosine(corners, i, window);
        if (cosine < mostCosine && turnCosine(corners, i, (window + 1) / 2) < mostCosineNearby)
            mSharpness[i] = 1 - cosine;
    }
    mIsTurn.assign(count, 0);
    for (std::size_t i = 0; i < count; ++i) {
        if (mSharpness[i] == 0)
            continue;
        // The sharpest within the window; the first of equal ones.
        bool sharpest = true;
        std::int32_t steps = 0;
        for (std::size_t k = i; sharpest;) {
            const std::size_t next = k + 1 == count ? 0 : k + 1;
            steps += stepsBetween(corners[k], corners[next]);
            if (steps > window || next == i)
                break;
            k = next;
            sharpest = mSharpness[k] < mSharpness[i] || (mSharpness[k] == mSharpness[i] && k > i);
        }
        steps = 0;
        for (std::size_t k = i; sharpest;) {
            const std::size_t next = k == 0 ? count - 1 : k - 1;
            steps += stepsBetween(corners[k], corners[next]);
            if (steps > window || next == i)
                break;
            k = next;
            sharpest = mSharpness[k] < mSharpness[i] || (mSharpness[k] == mSharpness[i] && k > i);
        }
        mIsTurn[i] = sharpest;
    }
}

/// Middles of the edges of short runs, and places along long ones: a slanting line's staircase becomes the
/// line again.
void OutlineFitter::collectPoints(std::span<const PixelCorner> corners)
{
    mPoints.clear();
    const std::size_t count = corners.size();
    // From a corner of the outline, if there is one.
    const auto found = std::find(mIsTurn.begin(), mIsTurn.end(), 1);
    const std::size_t start = found == mIsTurn.end() ? 0 : static_cast<std::size_t>(found - mIsTurn.begin());
    for (std::size_t k = 0; k < count; ++k) {
        const std::size_t i = (start + k) % count, next = (i + 1) % count;
        const Vec2 from = vec(corners[i]), to = vec(corners[next]);
        if (mIsTurn[i])
            mPoints.push_back({ from, {}, true });
        const std::int32_t run = stepsBetween(corners[i], corners[next]);
        const Vec2 step = (to - from) * (1.0 / run);
        if (run <= 2) {
            mPoints.push_back({ midpoint(from, to) });
            continue;
        }
        constexpr std::int32_t between = 8;
        for (std::int32_t s = 0; s + 1 < run; s += between)
            mPoints.push_back({ from + step * (s + 0.5) });
        mPoints.push_back({ to - step * 0.5 });
    }
}

void OutlineFitter::fitBetweenTurns()
{
    CurveFitOptions options;
    options.tolerance = mTolerance;
    options.keepsToLine = true;
    options.cornerAngle = std::numbers::pi;
    if (!mPoints.front().corner) {
        options.closed = true;
        appendCurves(mTarget, fitCurves(mPoints, options), true, 0);
        return;
    }
    mPoints.push_back(mPoints.front());
    mCurves.clear();
    for (std::size_t first = 0, last = 0; first + 1 < mPoints.size(); first = last) {
        for (last = first + 1; !mPoints[last].corner; ++last) { }
        if (isLine(first, last)) {
            mCurves.push_back(cubicFromLine(mPoints[first].p, mPoints[last].p));
            continue;
        }
        const auto fitted = fitCurves(std::span(mPoints).subspan(first, last - first + 1), options);
        mCurves.insert(mCurves.end(), fitted.begin(), fitted.end());
    }
    appendCurves(mTarget, mCurves, true, 1e-9);
}

bool OutlineFitter::isLine(std::size_t first, std::size_t last) const
{
    const Vec2 start = mPoints[first].p, line = mPoints[last].p - start;
    const double squared = dot(line, line), most = mTolerance;
    for (std::size_t i = first + 1; i < last; ++i) {
        const Vec2 w = mPoints[i].p - start;
        const double along = dot(w, line), off = cross(w, line);
        if (!(off * off <= most * most * squared && along >= -squared && along <= 2 * squared))
            return false;
    }
    return squared > 0;
}

} // namespace vxr
