#include <vxr/geometry/curves/MeasuredRun.h>

#include <vxr/platform/graphics/path/StrokeSegmenter.h>

namespace vxr {

MeasuredRun::MeasuredRun(TangentRun run, double blend)
    : mRun(std::move(run))
    , mBlend(blend)
{
    const std::size_t count = mRun.vertices.size();
    mLengths.assign(1, 0);
    for (std::size_t i = 1; i < count + mRun.closed; ++i)
        mLengths.push_back(mLengths.back() + (vertex(i).p - vertex(i - 1).p).length());
    for (std::size_t i = mRun.closed ? 0 : 1; i + !mRun.closed < count; ++i) {
        constexpr double leastCosine = 0.995;
        const TangentVertex& v = mRun.vertices[i];
        if (v.corner && dot(v.in, v.out) < leastCosine)
            mCorners.push_back(mLengths[i]);
    }
}

/// Turns from the tangent at one end of the segment to that at the other, and near a corner on to half way
/// between the directions there.
Vec2 MeasuredRun::directionWithin(std::size_t segment, double along) const
{
    const TangentVertex &from = vertex(segment), &to = vertex(segment + 1);
    const double length = mLengths[segment + 1] - mLengths[segment];
    const double t = length > 0 ? along / length : 0;
    Vec2 direction = from.out * (1 - t) + to.in * t;
    const double reach = std::min(mBlend, length * 0.5);
    const bool open = !mRun.closed;
    if (reach > 0 && from.corner && along < reach && !(open && segment == 0)) {
        const Vec2 middle = unit(from.in + from.out);
        direction = unit(direction) * (along / reach) + middle * (1 - along / reach);
    } else if (reach > 0 && to.corner && length - along < reach
        && !(open && segment + 2 == mRun.vertices.size())) {
        const Vec2 middle = unit(to.in + to.out);
        const double left = (length - along) / reach;
        direction = unit(direction) * left + middle * (1 - left);
    }
    direction = unit(direction);
    return direction == Vec2() ? from.out : direction;
}

MeasuredRun::Place MeasuredRun::at(double distance) const
{
    const double whole = length();
    if (!(whole > 0))
        return { mRun.vertices[0].p, {} };
    if (mRun.closed) {
        distance = std::fmod(distance, whole);
        if (distance < 0)
            distance += whole;
    }
    if (distance <= 0) {
        const Vec2 direction = directionWithin(0, 0);
        return { vertex(0).p + direction * distance, direction };
    }
    if (distance >= whole) {
        const std::size_t last = mLengths.size() - 2;
        const Vec2 direction = directionWithin(last, mLengths[last + 1] - mLengths[last]);
        return { vertex(last + 1).p + direction * (distance - whole), direction };
    }
    const auto after = std::upper_bound(mLengths.begin(), mLengths.end(), distance);
    const auto segment = static_cast<std::size_t>(after - mLengths.begin()) - 1;
    const double along = distance - mLengths[segment], length = mLengths[segment + 1] - mLengths[segment];
    const Vec2 from = vertex(segment).p, to = vertex(segment + 1).p;
    return { from + (to - from) * (along / length), directionWithin(segment, along) };
}

std::vector<MeasuredRun> measuredRuns(const Path& path, double tolerance, double blend)
{
    std::vector<MeasuredRun> runs;
    TangentRunBuilder builder(tolerance, tolerance / 8, [&](const TangentRun& run) {
        MeasuredRun measured(run, blend);
        if (measured.length() > 0)
            runs.push_back(std::move(measured));
    });
    walkFinite(path, builder);
    builder.finish();
    return runs;
}

} // namespace vxr
