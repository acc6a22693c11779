#include <vxr/platform/graphics/raster/FarOutline.h>

#include <algorithm>

namespace vxr {

namespace {

#ifdef __SIZEOF_FLOAT128__
__extension__ using Quad = __float128;
#else
using Quad = long double;
#endif

struct QuadPoint {
    Quad x, y;
};

struct QuadMatrix {
    Quad xx, xy, x0, yx, yy, y0;

    explicit QuadMatrix(const DeviceMatrix& m)
        : xx(m.xx)
        , xy(m.xy)
        , x0(m.x0)
        , yx(m.yx)
        , yy(m.yy)
        , y0(m.y0)
    {
    }
    QuadPoint map(Vec2 p) const
    {
        const Quad x = p.x, y = p.y;
        return { xx * x + xy * y + x0, yx * x + yy * y + y0 };
    }
};

QuadPoint middle(const QuadPoint& a, const QuadPoint& b) { return { (a.x + b.x) / 2, (a.y + b.y) / 2 }; }
Vec2 narrowed(const QuadPoint& p) { return { static_cast<double>(p.x), static_cast<double>(p.y) }; }

struct QuadCubic {
    QuadPoint a, b, c, d;
};

/// Below, within or above the near range along an axis.
int sideOf(Quad v) { return v < -nearRange ? -1 : v > nearRange ? 1 : 0; }

class Cutter {
public:
    explicit Cutter(const FarOutline::Sink& sink)
        : mSink(sink)
    {
    }

    void line(QuadPoint a, QuadPoint b)
    {
        const int sideA = sideOf(a.y), sideB = sideOf(b.y);
        if (sideA == sideB && sideA != 0)
            return;
        const QuadPoint from = sideA == 0 ? a : atHeight(a, b, sideA * nearRange);
        const QuadPoint to = sideB == 0 ? b : atHeight(a, b, sideB * nearRange);
        // In order of the walk: where it enters from one side, and leaves to the other.
        const int first = sideOf(from.x), last = sideOf(to.x);
        QuadPoint pen = from;
        if (first != 0 && last != first)
            pen = along(from, atColumn(a, b, first * nearRange));
        if (last != 0 && last != first) {
            const QuadPoint exit = atColumn(a, b, last * nearRange);
            emit(pen, exit);
            along(exit, to);
        } else if (first == last && first != 0) {
            along(from, to);
        } else {
            emit(pen, to);
        }
    }

    void curve(const QuadCubic& c, int depth = 0)
    {
        const auto [lowX, highX] = std::minmax({ c.a.x, c.b.x, c.c.x, c.d.x });
        const auto [lowY, highY] = std::minmax({ c.a.y, c.b.y, c.c.y, c.d.y });
        if (sideOf(lowX) == 0 && sideOf(highX) == 0 && sideOf(lowY) == 0 && sideOf(highY) == 0)
            return mSink.curve({ narrowed(c.a), narrowed(c.b), narrowed(c.c), narrowed(c.d) });
        const bool beyond = (sideOf(lowX) != 0 && sideOf(lowX) == sideOf(highX))
            || (sideOf(lowY) != 0 && sideOf(lowY) == sideOf(highY));
        if (beyond || depth == mostDepth || (highX - lowX < smallest && highY - lowY < smallest))
            return line(c.a, c.d);
        const QuadPoint ab = middle(c.a, c.b), bc = middle(c.b, c.c), cd = middle(c.c, c.d);
        const QuadPoint abc = middle(ab, bc), bcd = middle(bc, cd), half = middle(abc, bcd);
        curve({ c.a, ab, abc, half }, depth + 1);
        curve({ half, bcd, cd, c.d }, depth + 1);
    }

private:
    static constexpr int mostDepth = 160;
    static constexpr double smallest = 1.0 / 256;

    static QuadPoint atHeight(const QuadPoint& a, const QuadPoint& b, Quad y)
    {
        return { a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y), y };
    }
    static QuadPoint atColumn(const QuadPoint& a, const QuadPoint& b, Quad x)
    {
        const Quad limit = nearRange;
        const Quad y = a.y + (x - a.x) * (b.y - a.y) / (b.x - a.x);
        return { x, y < -limit ? -limit : y > limit ? limit : y };
    }

    /// The way from one point to another that stays beyond a side, moved onto it. Answers its end.
    QuadPoint along(QuadPoint from, QuadPoint to)
    {
        const Quad x = sideOf(from.x) != 0 ? sideOf(from.x) * nearRange : sideOf(to.x) * nearRange;
        from.x = to.x = x;
        emit(from, to);
        return to;
    }

    void emit(const QuadPoint& from, const QuadPoint& to) { mSink.line(narrowed(from), narrowed(to)); }

    const FarOutline::Sink& mSink;
};

} // namespace

void FarOutline::cutArea(const Path& path, const DeviceMatrix& toDevice, const Sink& sink)
{
    struct Walk {
        QuadMatrix matrix;
        Cutter cutter;
        Vec2 start, pen;

        void move(Vec2 p)
        {
            line(pen, start);
            start = pen = p;
        }
        void line(Vec2 from, Vec2 to)
        {
            cutter.line(matrix.map(from), matrix.map(to));
            pen = to;
        }
        void curve(const Cubic& c)
        {
            cutter.curve(
                { matrix.map(c.start), matrix.map(c.control1), matrix.map(c.control2), matrix.map(c.end) });
            pen = c.end;
        }
        void close(Vec2 from, Vec2 to) { line(from, to); }
    };
    Walk walk { QuadMatrix(toDevice), Cutter(sink), {}, {} };
    walkFinite(path, walk);
    walk.move({});
}

/// Whether a point lies above the near range (-1) or below it (1) for sure, as double precision can tell.
static int surelyBeyond(Vec2 p, const DeviceMatrix& m)
{
    constexpr double error = 1e-14; // more than rounding makes of the sum's largest term
    const double across = m.yx * p.x, down = m.yy * p.y, y = across + down + m.y0;
    const double least = nearRange + error * (std::abs(across) + std::abs(down) + std::abs(m.y0));
    return y < -least ? -1 : y > least ? 1 : 0;
}

// A contour may have millions of vertices, most of them far above or below.
void FarOutline::cutContour(std::span<const Vec2> vertices, const DeviceMatrix& toDevice, const Sink& sink)
{
    if (vertices.empty())
        return;
    const QuadMatrix matrix(toDevice);
    Cutter cutter(sink);
    const Vec2* mapped = nullptr; // the vertex that `last` is
    QuadPoint last {};
    const auto map = [&](const Vec2& v) {
        if (mapped != &v)
            last = matrix.map(v);
        mapped = &v;
        return last;
    };
    const Vec2* from = &vertices.back();
    int sideOfFrom = surelyBeyond(*from, toDevice);
    for (const Vec2& to : vertices) {
        const int side = surelyBeyond(to, toDevice);
        if (side == 0 || side != sideOfFrom) {
            const QuadPoint start = map(*from);
            cutter.line(start, map(to));
        }
        from = &to;
        sideOfFrom = side;
    }
}

} // namespace vxr
