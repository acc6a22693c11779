#include "Geometry.h"

#include <numbers>

namespace app::svg {

Matrix Matrix::rotation(double radians)
{
    const double sine = std::sin(radians);
    const double cosine = std::cos(radians);
    return { cosine, sine, -sine, cosine, 0, 0 };
}

bool Matrix::isInvertible() const
{
    const double area = determinant();
    return std::isfinite(area) && std::isfinite(e) && std::isfinite(f) && std::fabs(area) > 1e-30;
}

Matrix Matrix::inverse() const
{
    if (!isInvertible())
        return {};
    const double k = 1 / determinant();
    return { d * k, -b * k, -c * k, a * k, (c * f - d * e) * k, (b * e - a * f) * k };
}

bool Matrix::isSimilarity() const
{
    // The columns are perpendicular and equally long. A difference in stroke width of one part in
    // ten thousand can't be seen, and such matrices come from rounded numbers in files.
    const double tolerance = 1e-4 * (a * a + b * b + c * c + d * d);
    return std::fabs(a * c + b * d) <= tolerance
        && std::fabs((a * a + b * b) - (c * c + d * d)) <= 2 * tolerance;
}

double Matrix::largestScale() const
{
    const double sum = a * a + b * b + c * c + d * d;
    const double area = determinant();
    return std::sqrt((sum + std::sqrt(std::max(0.0, sum * sum - 4 * area * area))) / 2);
}

Matrix operator*(const Matrix& outer, const Matrix& inner)
{
    return { outer.a * inner.a + outer.c * inner.b, outer.b * inner.a + outer.d * inner.b,
        outer.a * inner.c + outer.c * inner.d, outer.b * inner.c + outer.d * inner.d,
        outer.a * inner.e + outer.c * inner.f + outer.e, outer.b * inner.e + outer.d * inner.f + outer.f };
}

void Outline::moveTo(Vec p)
{
    mVerbs.push_back(Verb::Move);
    mPoints.push_back(p);
    mCurrent = mStart = p;
}

void Outline::lineTo(Vec p)
{
    mVerbs.push_back(Verb::Line);
    mPoints.push_back(p);
    mCurrent = p;
}

void Outline::cubicTo(Vec control1, Vec control2, Vec end)
{
    mVerbs.push_back(Verb::Cubic);
    mPoints.insert(mPoints.end(), { control1, control2, end });
    mCurrent = end;
}

void Outline::close()
{
    mVerbs.push_back(Verb::Close);
    mCurrent = mStart;
}

bool Outline::endsInsideArc(std::size_t index) const
{
    return std::binary_search(mInsideArc.begin(), mInsideArc.end(), index);
}

void Outline::append(const Outline& other)
{
    for (std::size_t index : other.mInsideArc)
        mInsideArc.push_back(index + mVerbs.size());
    mVerbs.insert(mVerbs.end(), other.mVerbs.begin(), other.mVerbs.end());
    mPoints.insert(mPoints.end(), other.mPoints.begin(), other.mPoints.end());
    mCurrent = other.mCurrent;
    mStart = other.mStart;
}

void Outline::arcTo(Vec radii, double xAxisDegrees, bool largeArc, bool sweep, Vec end)
{
    const Vec start = mCurrent;
    double rx = std::fabs(radii.x);
    double ry = std::fabs(radii.y);
    if (start == end)
        return;
    if (rx == 0 || ry == 0)
        return lineTo(end);

    // Half the chord in the ellipse's own axes, where it is a circle of radius 1 after scaling.
    const double angle = xAxisDegrees * std::numbers::pi / 180;
    const Matrix turn = Matrix::rotation(angle);
    const Vec half = Matrix::rotation(-angle).map((start - end) * 0.5);
    const double stretch = (half.x / rx) * (half.x / rx) + (half.y / ry) * (half.y / ry);
    if (stretch > 1) {
        rx *= std::sqrt(stretch);
        ry *= std::sqrt(stretch);
    }
    const Vec unit { half.x / rx, half.y / ry };
    const double squared = unit.x * unit.x + unit.y * unit.y;
    if (!(squared > 0) || !std::isfinite(squared))
        return lineTo(end);
    double k = std::sqrt(std::max(0.0, 1 / squared - 1));
    if (largeArc == sweep)
        k = -k;
    const Vec center { k * unit.y, -k * unit.x };
    const double from = std::atan2(unit.y - center.y, unit.x - center.x);
    double delta = std::atan2(-unit.y - center.y, -unit.x - center.x) - from;
    if (sweep && delta < 0)
        delta += 2 * std::numbers::pi;
    else if (!sweep && delta > 0)
        delta -= 2 * std::numbers::pi;

    const Vec middle = (start + end) * 0.5;
    const Matrix place = Matrix::translation(middle.x, middle.y) * turn * Matrix::scaling(rx, ry)
        * Matrix::translation(center.x, center.y);
    // The tolerance keeps a quarter turn in one piece when rounding has made it slightly longer.
    const int pieces
        = std::max(1, static_cast<int>(std::ceil(std::fabs(delta) / (std::numbers::pi / 2) - 1e-9)));
    const double step = delta / pieces;
    const double handle = 4.0 / 3.0 * std::tan(step / 4);
    for (int i = 0; i < pieces; ++i) {
        const double t0 = from + i * step;
        const double t1 = t0 + step;
        const Vec p0 { std::cos(t0), std::sin(t0) };
        const Vec p1 { std::cos(t1), std::sin(t1) };
        if (i + 1 < pieces)
            mInsideArc.push_back(mVerbs.size());
        cubicTo(place.map(p0 + Vec { -p0.y, p0.x } * handle), place.map(p1 - Vec { -p1.y, p1.x } * handle),
            i + 1 == pieces ? end : place.map(p1));
    }
}

namespace {

double cubicAt(double p0, double p1, double p2, double p3, double t)
{
    const double s = 1 - t;
    return s * s * s * p0 + 3 * s * s * t * p1 + 3 * s * t * t * p2 + t * t * t * p3;
}

/// Widens [low, high] by the extremes of one coordinate of a cubic curve.
void includeExtremes(double p0, double p1, double p2, double p3, double& low, double& high)
{
    const auto include = [&](double t) {
        if (t > 0 && t < 1) {
            const double v = cubicAt(p0, p1, p2, p3, t);
            low = std::min(low, v);
            high = std::max(high, v);
        }
    };
    // Roots of the derivative a t^2 + b t + c.
    const double a = -p0 + 3 * p1 - 3 * p2 + p3;
    const double b = 2 * (p0 - 2 * p1 + p2);
    const double c = p1 - p0;
    if (std::fabs(a) < 1e-12 * (std::fabs(b) + std::fabs(c))) {
        if (b != 0)
            include(-c / b);
        return;
    }
    const double inside = b * b - 4 * a * c;
    if (inside < 0)
        return;
    const double root = std::sqrt(inside);
    include((-b + root) / (2 * a));
    include((-b - root) / (2 * a));
}

} // namespace

Box Outline::bounds(const Matrix& matrix) const
{
    Box box;
    Vec current;
    std::size_t next = 0;
    for (std::size_t i = 0; i < mVerbs.size(); ++i) {
        switch (mVerbs[i]) {
        case Verb::Move:
            current = matrix.map(mPoints[next++]);
            // A trailing move draws nothing.
            if (i + 1 < mVerbs.size() && mVerbs[i + 1] != Verb::Move)
                box.include(current);
            break;
        case Verb::Line:
            current = matrix.map(mPoints[next++]);
            box.include(current);
            break;
        case Verb::Cubic: {
            const Vec p1 = matrix.map(mPoints[next]);
            const Vec p2 = matrix.map(mPoints[next + 1]);
            const Vec p3 = matrix.map(mPoints[next + 2]);
            next += 3;
            box.include(p3);
            includeExtremes(current.x, p1.x, p2.x, p3.x, box.minX, box.maxX);
            includeExtremes(current.y, p1.y, p2.y, p3.y, box.minY, box.maxY);
            current = p3;
            break;
        }
        case Verb::Close:
            break;
        }
    }
    return box;
}

double Outline::signedArea() const
{
    double sum = 0;
    Vec start, current;
    const auto goTo = [&](Vec to) {
        sum += current.x * to.y - to.x * current.y;
        current = to;
    };
    std::size_t next = 0;
    for (Verb verb : mVerbs) {
        if (verb == Verb::Move) {
            goTo(start);
            start = current = mPoints[next++];
        } else if (verb == Verb::Close) {
            goTo(start);
        } else {
            next += verb == Verb::Cubic ? 2 : 0;
            goTo(mPoints[next++]);
        }
    }
    goTo(start);
    return sum;
}

Outline Outline::reversed() const
{
    struct Segment {
        Verb verb;
        Vec from, control1, control2;
    };
    Outline result;
    std::vector<Segment> run;
    Vec start, current;
    const auto finishRun = [&](bool closed) {
        if (run.empty())
            return;
        result.moveTo(current);
        for (auto segment = run.rbegin(); segment != run.rend(); ++segment) {
            if (segment->verb == Verb::Cubic)
                result.cubicTo(segment->control2, segment->control1, segment->from);
            else
                result.lineTo(segment->from);
        }
        if (closed)
            result.close();
        run.clear();
    };
    std::size_t next = 0;
    for (Verb verb : mVerbs) {
        if (verb == Verb::Move) {
            finishRun(false);
            start = current = mPoints[next++];
        } else if (verb == Verb::Close) {
            finishRun(true);
            current = start;
        } else {
            Segment segment { verb, current, {}, {} };
            if (verb == Verb::Cubic) {
                segment.control1 = mPoints[next++];
                segment.control2 = mPoints[next++];
            }
            current = mPoints[next++];
            run.push_back(segment);
        }
    }
    finishRun(false);
    return result;
}

Outline Outline::withDotsOfLength(double length) const
{
    Outline result;
    std::size_t firstPoint = 0;
    for (std::size_t first = 0, last = 0; first < mVerbs.size(); first = last) {
        std::size_t points = 1;
        for (last = first + 1; last < mVerbs.size() && mVerbs[last] != Verb::Move; ++last)
            points += mVerbs[last] == Verb::Cubic ? 3 : mVerbs[last] == Verb::Line ? 1 : 0;
        const Vec start = mPoints[firstPoint];
        const auto begin = mPoints.begin() + static_cast<std::ptrdiff_t>(firstPoint);
        const auto end = begin + static_cast<std::ptrdiff_t>(points);
        result.moveTo(start);
        if (last - first > 1 && std::all_of(begin, end, [&](Vec p) { return p == start; })) {
            result.lineTo(start + Vec { length, 0 });
        } else {
            result.mVerbs.insert(result.mVerbs.end(), mVerbs.begin() + static_cast<std::ptrdiff_t>(first) + 1,
                mVerbs.begin() + static_cast<std::ptrdiff_t>(last));
            result.mPoints.insert(result.mPoints.end(), begin + 1, end);
        }
        firstPoint += points;
    }
    result.mCurrent = mCurrent;
    result.mStart = mStart;
    return result;
}

Outline Outline::transformed(const Matrix& matrix) const
{
    Outline result = *this;
    for (Vec& p : result.mPoints)
        p = matrix.map(p);
    result.mCurrent = matrix.map(mCurrent);
    result.mStart = matrix.map(mStart);
    return result;
}

Outline Outline::rectangle(double x, double y, double width, double height, double rx, double ry)
{
    Outline outline;
    rx = std::min(rx, width / 2);
    ry = std::min(ry, height / 2);
    if (!(rx > 0 && ry > 0)) {
        outline.moveTo({ x, y });
        outline.lineTo({ x + width, y });
        outline.lineTo({ x + width, y + height });
        outline.lineTo({ x, y + height });
        outline.close();
        return outline;
    }
    const Vec radii { rx, ry };
    outline.moveTo({ x + rx, y });
    outline.lineTo({ x + width - rx, y });
    outline.arcTo(radii, 0, false, true, { x + width, y + ry });
    outline.lineTo({ x + width, y + height - ry });
    outline.arcTo(radii, 0, false, true, { x + width - rx, y + height });
    outline.lineTo({ x + rx, y + height });
    outline.arcTo(radii, 0, false, true, { x, y + height - ry });
    outline.lineTo({ x, y + ry });
    outline.arcTo(radii, 0, false, true, { x + rx, y });
    outline.close();
    return outline;
}

Outline Outline::ellipse(Vec center, double rx, double ry)
{
    Outline outline;
    const Vec radii { rx, ry };
    outline.moveTo({ center.x + rx, center.y });
    outline.arcTo(radii, 0, false, true, { center.x, center.y + ry });
    outline.arcTo(radii, 0, false, true, { center.x - rx, center.y });
    outline.arcTo(radii, 0, false, true, { center.x, center.y - ry });
    outline.arcTo(radii, 0, false, true, { center.x + rx, center.y });
    outline.close();
    return outline;
}

} // namespace app::svg
