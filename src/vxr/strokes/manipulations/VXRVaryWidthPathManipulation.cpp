#include <vxr/strokes/manipulations/VXRVaryWidthPathManipulation.h>

#include <vxr/geometry/curves/MeasuredRun.h>
#include <vxr/strokes/manipulations/DrawnNoise.h>

#include <algorithm>
#include <numbers>

namespace vxr {

namespace {

/// Writes the area as convex pieces that all run the same way round: under the nonzero rule none cancels
/// another, and edges that two of them share leave no seam.
class SwellingLine {
public:
    explicit SwellingLine(Path& area)
        : mArea(area)
    {
    }

    void move(Vec2 p, Vec2 direction, double radius)
    {
        mP = p;
        mNormal = leftNormal(direction) * radius;
    }

    void line(Vec2 p, Vec2 direction, double radius)
    {
        const Vec2 normal = leftNormal(direction) * radius;
        // Where the line bends tighter than its width the sides cross; two triangles stay convex.
        triangle(mP + mNormal, mP - mNormal, p - normal);
        triangle(mP + mNormal, p - normal, p + normal);
        move(p, direction, radius);
    }

    void disc(Vec2 center, double radius)
    {
        if (!(radius > 0))
            return;
        const int sides = static_cast<int>(std::clamp(std::sqrt(radius / 0.05) * 4, 8.0, 64.0));
        for (int i = 0; i < sides; ++i) {
            const double angle = 2 * std::numbers::pi * i / sides;
            const Point p = (center + Vec2(std::cos(angle), std::sin(angle)) * radius).point();
            i == 0 ? mArea.moveTo(p) : mArea.lineTo(p);
        }
        mArea.close();
    }

private:
    void triangle(Vec2 a, Vec2 b, Vec2 c)
    {
        const double area = cross(b - a, c - a);
        if (area == 0)
            return;
        if (area < 0)
            std::swap(b, c);
        mArea.moveTo(a.point());
        mArea.lineTo(b.point());
        mArea.lineTo(c.point());
        mArea.close();
    }

    Path& mArea;
    Vec2 mP, mNormal;
};

} // namespace

double VXRVaryWidthPathManipulation::amountThatCounts() const
{
    return std::clamp(finiteOrZero(mAmount), 0.0, 1.0);
}

VXRPaintedPath VXRVaryWidthPathManipulation::manipulatedPath(
    const VXRPaintedPath& painted, const VXRStrokeSetting& setting) const
{
    const double width = finiteOrZero(setting.lineWidth) * painted.widthFactor, amount = amountThatCounts();
    const double wanted = finiteOrZero(mWavelength) * width;
    if (painted.isArea || !(amount > 0) || !(wanted > 0))
        return painted;
    auto area = painted.path->copy();
    area->removeAllPoints();
    SwellingLine line(*area);
    const auto runs = measuredRuns(*painted.path, 0.05, 0);
    double whole = 0;
    for (const MeasuredRun& run : runs)
        whole += run.length();
    const double wavelength = std::max(wanted, whole * 8 / mostDrawnPieces);
    std::uint64_t offset = 0; // every run varies in its own way
    for (const MeasuredRun& run : runs) {
        const double length = run.length();
        const double waves
            = run.isClosed() ? std::max(1.0, std::round(length / wavelength)) : length / wavelength;
        const auto period = run.isClosed() ? static_cast<std::uint64_t>(waves) : 0;
        const auto radiusAt = [&](double s) {
            const DrawnNoise own(mSeed + static_cast<std::uint32_t>(offset) * 7919);
            return 0.5 * width * (1 + amount * own.smoothAt(s / length * waves, period));
        };
        ++offset;
        const double step
            = std::max(std::min(wavelength / 8, std::max(width, length / 2000)), length / mostDrawnPieces);
        const auto& corners = run.corners();
        std::size_t corner = 0;
        const auto steps = static_cast<std::size_t>(std::ceil(length / step));
        const MeasuredRun::Place first = run.at(0);
        line.move(first.p, first.direction, radiusAt(0));
        line.disc(first.p, radiusAt(0));
        double before = 0;
        for (std::size_t i = 1; i <= steps; ++i) {
            const double s = length * static_cast<double>(i) / static_cast<double>(steps);
            // Through every corner itself, with a disc to fill the turn.
            for (; corner < corners.size() && corners[corner] < s; ++corner) {
                const double at = corners[corner];
                if (at > before) {
                    const MeasuredRun::Place in = run.at(at - length * 1e-9),
                                             out = run.at(at + length * 1e-9);
                    line.line(in.p, in.direction, radiusAt(at));
                    line.move(out.p, out.direction, radiusAt(at));
                }
                line.disc(run.at(at).p, radiusAt(at));
            }
            const MeasuredRun::Place place
                = i == steps && run.isClosed() ? run.at(length * (1 - 1e-12)) : run.at(s);
            line.line(place.p, place.direction, radiusAt(s));
            before = s;
        }
        if (!run.isClosed())
            line.disc(run.at(length).p, radiusAt(length));
    }
    area->setWindingRule(WindingRule::NonZero);
    return { area, true, 1 };
}

float VXRVaryWidthPathManipulation::reachForLineWidth(float lineWidth) const
{
    return static_cast<float>(std::max(amountThatCounts() * finiteOrZero(lineWidth) * 0.5, 0.0));
}

std::shared_ptr<VXRPathManipulation> VXRVaryWidthPathManipulation::copyWithZone() const
{
    return std::make_shared<VXRVaryWidthPathManipulation>(*this);
}

bool VXRVaryWidthPathManipulation::isEqual(const Object& other) const
{
    const auto* same = dynamic_cast<const VXRVaryWidthPathManipulation*>(&other);
    return same && same->mAmount == mAmount && same->mWavelength == mWavelength && same->mSeed == mSeed;
}

} // namespace vxr
