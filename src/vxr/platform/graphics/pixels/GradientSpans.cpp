#include <vxr/platform/graphics/pixels/GradientSpans.h>

#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

constexpr double farthestPixel = 1 << 24;

/// A transform in double precision, from pixel numbers to the blend's space.
struct FromPixels {
    double xx, xy, x0, yx, yy, y0; // x = xx column + xy row + x0
    bool isFinite = false;

    explicit FromPixels(const AffineTransform& t)
    {
        const double scale = 1 / t.determinant();
        xx = t.m22 * scale;
        xy = -t.m21 * scale;
        yx = -t.m12 * scale;
        yy = t.m11 * scale;
        const double cx = 0.5 - t.tX, cy = 0.5 - t.tY;
        x0 = xx * cx + xy * cy;
        y0 = yx * cx + yy * cy;
        isFinite = std::isfinite(xx + xy + x0 + yx + yy + y0);
    }
};

bool isFinite(Point p) { return std::isfinite(p.x) && std::isfinite(p.y); }

} // namespace

GradientSpans GradientSpans::axial(
    std::shared_ptr<const GradientTable> table, Point start, Point end, const AffineTransform& toDevice)
{
    GradientSpans spans;
    const FromPixels from(toDevice);
    const double dx = double(end.x) - start.x, dy = double(end.y) - start.y;
    const double square = dx * dx + dy * dy;
    if (!from.isFinite || !isFinite(start) || !isFinite(end) || !(square > 0))
        return spans;
    const double steps = table->steps();
    double column = steps * ((from.xx * dx + from.yx * dy) / square);
    double row = steps * ((from.xy * dx + from.yy * dy) / square);
    double origin = steps * (((from.x0 - start.x) * dx + (from.y0 - start.y) * dy) / square);

    // As many fraction bits as the farthest pixel leaves. An axis too short for that is drawn longer, though
    // still much shorter than a pixel.
    constexpr int leastBits = 8, mostBits = 32;
    const double most = (std::abs(column) + std::abs(row)) * farthestPixel + std::abs(origin) + steps;
    if (!std::isfinite(most))
        return spans;
    const int bits = 61 - std::ilogb(most);
    if (bits < leastBits) {
        const double shorter = std::ldexp(1, bits - leastBits);
        column *= shorter;
        row *= shorter;
        origin *= shorter;
    }
    spans.mFractionBits = std::clamp(bits, leastBits, mostBits);
    const auto fixed
        = [&](double value) { return std::int64_t(std::llround(std::ldexp(value, spans.mFractionBits))); };
    spans.mStep = fixed(column);
    spans.mRowStep = fixed(row);
    spans.mStart = fixed(origin);
    spans.mKind = Kind::Axial;
    spans.mIsOpaque = table->isOpaque() && table->extendsStart() && table->extendsEnd();
    spans.mTable = std::move(table);
    return spans;
}

GradientSpans GradientSpans::radial(std::shared_ptr<const GradientTable> table, Point start,
    float startRadius, Point end, float endRadius, const AffineTransform& toDevice)
{
    GradientSpans spans;
    const FromPixels from(toDevice);
    const double dx = double(end.x) - start.x, dy = double(end.y) - start.y;
    const double growth = double(endRadius) - startRadius;
    if (!from.isFinite || !isFinite(start) || !isFinite(end) || !(startRadius >= 0) || !(endRadius >= 0)
        || !std::isfinite(growth) || (dx == 0 && dy == 0 && growth == 0))
        return spans;
    spans.mTable = std::move(table);
    spans.mAny = { from.xx, from.xy, from.x0 - start.x, from.yx, from.yy, from.y0 - start.y, dx, dy,
        startRadius, growth };
    spans.mKind = spans.prepareCircles() ? Kind::Circles : Kind::AnyCircles;
    const GradientTable& t = *spans.mTable;
    spans.mIsOpaque
        = t.isOpaque() && t.extendsStart() && t.extendsEnd() && growth * growth > dx * dx + dy * dy;
    return spans;
}

/// Whether the circles allow the form without a division. Where they nearly touch within, or nearly have one
/// radius, its terms would cancel out.
bool GradientSpans::prepareCircles()
{
    const AnyCircles& c = mAny;
    const double distance = std::hypot(c.dx, c.dy);
    const double a = distance * distance - c.growth * c.growth;
    const double zero = -c.startRadius / c.growth; // parameter at which the radius is 0
    if (!(std::abs(zero) < 64) || !(std::abs(a) > (distance * distance + c.growth * c.growth) / 64))
        return false;

    const double ux = distance > 0 ? c.dx / distance : 1, uy = distance > 0 ? c.dy / distance : 0;
    const double scale = mTable->steps() / std::abs(a);
    const double scaleU = scale * std::abs(c.growth), scaleV = scale * std::sqrt(std::abs(a));
    const double px = c.x0 - zero * c.dx, py = c.y0 - zero * c.dy;
    mStartU = (px * ux + py * uy) * scaleU;
    mStartV = (py * ux - px * uy) * scaleV;
    mRowU = (c.xy * ux + c.yy * uy) * scaleU;
    mRowV = (c.yy * ux - c.xy * uy) * scaleV;
    const double slope = distance / std::abs(c.growth);
    mCircles = { (c.xx * ux + c.yx * uy) * scaleU, (c.yx * ux - c.xx * uy) * scaleV,
        float(mTable->steps() * zero), float(a < 0 ? -slope : slope), c.growth < 0 ? -1.0f : 1.0f,
        float(mTable->steps()), a > 0, mTable->extendsStart(), mTable->extendsEnd(), mTable->colors() };
    const double most
        = (std::abs(mCircles.columnU) + std::abs(mCircles.columnV) + std::abs(mRowU) + std::abs(mRowV))
            * farthestPixel
        + std::abs(mStartU) + std::abs(mStartV);
    return most < 1e18; // squares stay within single precision
}

void GradientSpans::fill(int x, int y, std::size_t count, std::uint32_t* colors) const
{
    switch (mKind) {
    case Kind::Nothing:
        std::fill_n(colors, count, 0u);
        break;
    case Kind::Axial:
        fillAxial(x, y, count, colors);
        break;
    case Kind::Circles:
        spanKernels().radial(mCircles, mStartU + mRowU * y, mStartV + mRowV * y, x, count, colors);
        break;
    case Kind::AnyCircles:
        fillAnyCircles(x, y, count, colors);
        break;
    }
}

// A row has at most three runs: before, within and behind the blend. All sums are exact, so that it doesn't
// matter where a span begins.
void GradientSpans::fillAxial(int x, int y, std::size_t count, std::uint32_t* colors) const
{
    const std::uint32_t* table = mTable->colors();
    const std::int64_t last = std::int64_t(mTable->steps()) << mFractionBits;
    const std::int64_t half = std::int64_t(1) << (mFractionBits - 1);
    std::int64_t place = mStart + mRowStep * y + mStep * x;
    while (count) {
        // How many pixels of the run follow the first one.
        std::int64_t more = INT64_MAX;
        if (place < 0) {
            if (mStep > 0)
                more = (-place - 1) / mStep;
        } else if (place > last) {
            if (mStep < 0)
                more = (place - last - 1) / -mStep;
        } else if (mStep) {
            more = mStep > 0 ? (last - place) / mStep : place / -mStep;
        }
        const auto run = std::size_t(std::min<std::uint64_t>(count, std::uint64_t(more) + 1));
        if (place < 0 || place > last) {
            std::fill_n(colors, run, table[place < 0 ? -1 : mTable->steps() + 1]);
        } else if (!mStep) {
            std::fill_n(colors, run, table[(place + half) >> mFractionBits]);
        } else {
            std::int64_t at = place + half;
            for (std::size_t i = 0; i < run; ++i, at += mStep)
                colors[i] = table[at >> mFractionBits];
        }
        place += mStep * std::int64_t(run);
        colors += run;
        count -= run;
    }
}

void GradientSpans::fillAnyCircles(int x, int y, std::size_t count, std::uint32_t* colors) const
{
    const AnyCircles& c = mAny;
    const std::uint32_t* table = mTable->colors();
    const int steps = mTable->steps();
    const double a = c.dx * c.dx + c.dy * c.dy - c.growth * c.growth;
    const bool isLinear = std::abs(a) <= 1e-12 * (c.dx * c.dx + c.dy * c.dy + c.growth * c.growth);

    // The table's place of a parameter, none where there is no circle or no extension.
    const int none = steps + 2;
    const auto placeOf = [&](double t) {
        if (!(c.startRadius + t * c.growth >= 0))
            return none;
        if (t < 0)
            return mTable->extendsStart() ? -1 : none;
        if (t > 1)
            return mTable->extendsEnd() ? steps + 1 : none;
        return int(t * steps + 0.5);
    };
    for (std::size_t i = 0; i < count; ++i) {
        const double column = double(x) + double(i);
        const double px = c.xx * column + c.xy * y + c.x0, py = c.yx * column + c.yy * y + c.y0;
        const double b = px * c.dx + py * c.dy + c.startRadius * c.growth;
        const double rest = px * px + py * py - c.startRadius * c.startRadius;
        const double square = b * b - a * rest;
        int place = none;
        if (isLinear) {
            place = placeOf(rest / (2 * b));
        } else if (square >= 0 || a < 0) {
            const double q = b + std::copysign(std::sqrt(std::max(square, 0.0)), b);
            const double first = q / a, second = q == 0 ? first : rest / q;
            place = placeOf(std::max(first, second));
            if (place == none)
                place = placeOf(std::min(first, second));
        }
        colors[i] = table[place];
    }
}

} // namespace vxr
