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

std::shared_ptr<Path> Path::bezierPathByFlatteningPath() const
{
    const auto curves
        = static_cast<std::size_t>(std::count(mKinds.begin(), mKinds.end(), PathElementKind::CurveTo));
    if (curves == 0)
        return copy();

    auto flat = path();
    flat->mStyle = mStyle;
    flat->mFlatness = mFlatness;
    flat->mWindingRule = mWindingRule;
    flat->reserve(mKinds.size() + 4 * curves);
    CurveFlattener flattener(mFlatness, 1 << 24);
    const Point* p = mPoints.data();
    for (PathElementKind kind : mKinds) {
        switch (kind) {
        case PathElementKind::MoveTo:
            flat->moveTo(*p++);
            break;
        case PathElementKind::LineTo:
            flat->lineTo(*p++);
            break;
        case PathElementKind::CurveTo: {
            const Point start = flat->currentPoint();
            if (isFinite(start) && isFinite(p[0]) && isFinite(p[1]) && isFinite(p[2]))
                flattener.flatten(Cubic { start, p[0], p[1], p[2] },
                    [&](const Cubic& piece) { flat->lineTo(piece.end.point()); });
            else
                flat->lineTo(p[2]);
            p += 3;
            break;
        }
        case PathElementKind::Close:
            flat->close();
            break;
        }
    }
    return flat;
}

} // namespace vxr
