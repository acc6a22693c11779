#include <vxr/platform/graphics/path/PathFlattener.h>

namespace vxr {

double CurveFlattener::limitFor(const Cubic& c) const
{
    constexpr double precision = 0x1p-25;
    double most = 0;
    for (const Vec2& p : { c.start, c.control1, c.control2, c.end })
        most = std::max({ most, std::abs(p.x), std::abs(p.y) });
    const double fourfold = 4 * std::max(mTolerance, most * precision);
    return fourfold * fourfold;
}

namespace {

/// Builds the flat copy of a path.
class FlatCopy {
public:
    FlatCopy(Path& flat, double tolerance)
        : mFlat(flat)
        , mFlattener(tolerance, 1 << 24)
    {
    }

    void moveTo(Point p) { mFlat.moveTo(p); }
    void lineTo(Point p) { mFlat.lineTo(p); }
    void close() { mFlat.close(); }

    void curveTo(Point control1, Point control2, Point end)
    {
        const Point start = mFlat.currentPoint();
        if (isFinite(start) && isFinite(control1) && isFinite(control2) && isFinite(end))
            mFlattener.flatten(Cubic { start, control1, control2, end },
                [&](const Cubic& piece) { mFlat.lineTo(piece.end.point()); });
        else
            mFlat.lineTo(end);
    }

private:
    Path& mFlat;
    CurveFlattener mFlattener;
};

} // namespace

std::shared_ptr<Path> Path::bezierPathByFlatteningPath() const
{
    const auto curves = static_cast<std::size_t>(std::ranges::count(kinds(), PathElementKind::CurveTo));
    if (curves == 0)
        return copy();

    auto flat = path();
    flat->copyStyle(*this);
    flat->reserve(elementCount() + 4 * curves);
    visit(FlatCopy(*flat, mFlatness));
    return flat;
}

} // namespace vxr
